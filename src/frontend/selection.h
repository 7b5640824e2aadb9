#pragma once

#include <iosfwd>
#include <string>
#include <vector>

class ProjectElement;
class ProjectSystem;

// What a run does with the loaded tree before it builds: pick the element,
// apply the command line's property values, and check the configuration.
// A failed look-up prints its header and the valid names, one a line, on
// `out` and answers false (or null); the caller ends the run with status 1.

// -project: an exact name below the root, else the first name of the project
// list that starts with the text.
ProjectElement *selectProject(ProjectSystem &system, ProjectElement *root, const std::string &name,
                              std::ostream &out);
// -solution: a solution element by name.
ProjectElement *selectSolution(ProjectSystem &system, const std::string &name, std::ostream &out);

// -property "name=value" on the selected element in the active configuration.
bool setCommandLineProperty(ProjectSystem &system, ProjectElement *element,
                            const std::string &configuration, const std::string &entry,
                            std::ostream &out);
// -sproperty "name=value" on the root in `configuration`; names that aren't
// properties are passed over.
void setSolutionProperty(ProjectSystem &system, const std::string &configuration,
                         const std::string &entry);

// The public configurations of the element with "Common"; false if the
// active one isn't among them (exact, with case).
bool checkConfiguration(ProjectSystem &system, ProjectElement *element,
                        const std::string &configuration, std::ostream &out);

// -showconfigs: the configurations, or with -batch the batch configurations
// of the active one, sorted, one a line.
void showConfigurations(ProjectSystem &system, ProjectElement *element,
                        const std::string &configuration, bool batch, std::ostream &out);

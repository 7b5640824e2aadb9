#pragma once

// The build of one node, as buildElement runs it once the node's children are
// done: the shared context of every kind's branch and the small helpers they
// have in common. Internal to the build logic.

#include "build/build_flags.h"
#include "build/builder.h"
#include "build/idler.h"
#include "build/standard_project_system.h"

#include <optional>
#include <string>

struct NodeBuild {
    StandardProjectSystem &system;
    ProjectElement *element;
    const std::string &configuration;
    Builder *builder;  // never null: a NullBuilder stands in for none
    bool hasBuilder;
    Idler *idler;      // never null
    BuildFlags flags;
    bool force;        // rebuild whatever the file times say
    bool quiet;        // BuildQuietChecks
    std::string projectDirectory;
    std::string name;  // the display name

    NodeBuild(StandardProjectSystem &projectSystem, ProjectElement *node, const std::string &config,
              Builder *realBuilder, Builder *nullBuilder, Idler *progress, BuildFlags buildFlags,
              bool forced);

    // The branches of the build kinds; each answers whether the node was or
    // would be built.
    bool compile(int kind);
    bool externalCommands();
    bool link();
    bool archive();
    bool stageProject();
    bool stageFile();
    bool combine();

    // ---- Shared steps.

    void beginStep(const std::string &title);
    void endStep();
    // The "Checking" step around an up-to-date check, unless quiet.
    void beginCheck();
    void endCheck();
    // Ends an up-to-date check with its outcome; the node isn't built.
    bool upToDate(const char *suffix);
    // The clean step: deletes the files quietly.
    void clean(const StringList &files);
    // True if the build stops after its check.
    bool checkOnly() const { return (flags & BuildCheckOnly) || !hasBuilder; }
    void stepDone() { idler->stepDone(element, configuration); }

    // A property expanded for this node, with extra macros.
    std::string expanded(PropertyClass *property, const MacroMap &extra = {});
    // A command's working directory: the expanded property against the
    // project directory; the project directory when it is empty.
    std::string workingDirectory(PropertyClass *property);
    // A path as the commands of this node see it: relative to the project
    // directory where it can be.
    std::string relative(const std::string &path) const;
    // Each part of a chain, split into arguments, as one command.
    void addCommands(const StringList &parts, const std::string &directory,
                     const std::string &outputFile);
    // The chmod of stage_set_readonly and combine_set_readonly.
    void setReadonly(PropertyClass *property, const std::string &directory, const std::string &target);

private:
    void externalCompile(int kind, const std::string &target);
    void externalLink(const StringList &objects, const StringList &libraries,
                      const std::string &target, const std::string &command,
                      const std::string &linkerScript);
    void cleanOutputs(int kind, const std::string &target);
    void deleteIntermediateDirectory();
};

// "a" "b" "c": each text in double quotes, joined by blanks.
std::string quotedList(const StringList &items);
std::string joinedList(const StringList &items);

// Step 4 of a node's build for a unity folder (see unity_build.cpp): writes
// the unity file, points the folder at it and builds the files kept out of
// it. Answers the node's result when its build ends there.
std::optional<bool> buildUnityFolder(StandardProjectSystem &system, ProjectElement *folder,
                                     const std::string &configuration, Builder *builder,
                                     Idler *idler, BuildFlags flags, bool &force);
// The unity file of a folder, and the folder's file_name set to it.
std::string unityFilePath(StandardProjectSystem &system, ProjectElement *folder,
                          const std::string &configuration);
void pointFolderAtUnityFile(StandardProjectSystem &system, ProjectElement *folder,
                            const std::string &path);

// Reading a solution file into the tree: one file, as it stands.

#include "project/project_load_progress_interface.h"
#include "project/project_system.h"
#include "project/project_system_xml.h"
#include "support/exceptions.h"
#include "support/file_info.h"

ProjectElement *ProjectSystem::readSolution(const std::string &fileName,
                                            ProjectLoadProgressInterface *progress) {
    const FileInfo info(fileName);
    if (!info.exists())
        throw SolutionLoadError(" does not exist", false, fileName);
    if (info.isDir() || !info.isReadable())
        throw SolutionLoadError(" cannot access", false, fileName);

    close();
    trackingChanges = false;
    if (progress)
        progress->beginTask("Loading solution " + info.fileName(), 2);
    const auto fail = [progress, &fileName](const std::string &message, bool badXml) {
        if (progress)
            progress->endTask();
        throw SolutionLoadError(message, badXml, fileName);
    };

    const std::string path = info.absoluteFilePath();
    ProjectSystemXMLPP2 document(this, macros);
    if (!document.load(path))
        fail(document.errorText, true);
    if (document.doctype != "Tarnbench_Project_File")
        fail(" not a solution file", false);
    if (!document.root)
        fail(" is a malformed solution file (bad XML)", false);

    ProjectElement *root = document.projectRoot();
    document.takeRoot();
    root->filePath = FilePath(path);
    root->fileTime = root->filePath.lastModified();
    if (const std::string *version = root->attribute("version"); !version || *version != "2")
        root->XMLElement::setAttribute("version", "2");
    solution = root;

    if (progress)
        progress->beginTask("Mapping project information", 0);
    mapProjects(progress);
    if (progress) {
        progress->endTask();
        progress->endTask();
    }
    trackingChanges = true;
    return root;
}

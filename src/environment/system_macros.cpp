#include "environment/system_macros.h"

#include "environment/user_directories.h"
#include "environment/version.h"
#include "support/exceptions.h"
#include "support/file_path.h"
#include "support/file_utils.h"

#include <cctype>
#include <cstdio>
#include <memory>

namespace {

// The host this program was built for.
#if defined(__aarch64__)
constexpr const char *hostArch = "arm64";
constexpr const char *hostArchClass = "arm";
#elif defined(__arm__)
constexpr const char *hostArch = "arm";
constexpr const char *hostArchClass = "arm";
#elif defined(__x86_64__)
constexpr const char *hostArch = "x64";
constexpr const char *hostArchClass = "intel";
#elif defined(__i386__)
constexpr const char *hostArch = "x86";
constexpr const char *hostArchClass = "intel";
#else
#error "unknown host CPU: give it a HostArch and a HostArchClass"
#endif

#if defined(__linux__)
constexpr const char *hostOS = "linux";
constexpr const char *hostDLLExt = ".so";
#else
#error "unknown host operating system: give it a HostOS and a HostDLLExt"
#endif

std::string lowerCase(std::string text) {
    for (char &c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

std::string replaced(std::string text, const std::string &from, const std::string &to) {
    const auto at = text.find(from);
    if (at != std::string::npos)
        text.replace(at, from.size(), to);
    return text;
}

// The user's frequency list starts as an include of the installation's.
const char frequenciesFileText[] =
    "<envelope>\n"
    "  <include filename=\"$(StudioDir)/targets/frequencies.xml\" />\n"
    "</envelope>\n";

bool writeNewFile(const std::string &file, const char *text) {
    std::FILE *stream = std::fopen(file.c_str(), "w");
    if (!stream)
        return false;
    const bool written = std::fputs(text, stream) >= 0;
    return std::fclose(stream) == 0 && written;
}

}  // namespace

SystemMacros::SystemMacros() {
    // The clock macros are computed at each expansion; their entries only
    // make the names known.
    addSystemMacro("Date", "", "Day Month Year e.g. 21 June 2011.");
    addSystemMacro("DateYear", "", "Year e.g. 2011.");
    addSystemMacro("DateMonth", "", "Month e.g. 01 to 12.");
    addSystemMacro("DateDay", "", "Day e.g. 21.");
    addSystemMacro("Time", "", "Hour:Minutes:Seconds e.g. 15:34:03.");
    addSystemMacro("TimeHour", "", "Hour e.g. 15.");
    addSystemMacro("TimeMinute", "", "Minute e.g. 34.");
    addSystemMacro("TimeSecond", "", "Seconds e.g. 03.");
    addSystemMacro("UnixTime", "", "Seconds since 00:00, Jan 1 1970 UTC");
    addSystemMacro("HostArch", hostArch, "The CPU architecture that Tarnbench is running on e.g. x86.");
    addSystemMacro("HostArchClass", hostArchClass,
                   "The class of CPU architecture that Tarnbench is running on e.g. intel, arm.");
    addSystemMacro("HostOS", hostOS, "The name of the operating system that Tarnbench is running on e.g. win.");
    addSystemMacro("Micro", Version::targetName, "The Tarnbench target e.g. ARM.");
    addSystemMacro("TargetID", std::to_string(Version::targetIdentifier),
                   "ID number representing the Tarnbench target.");
    addSystemMacro("HostEXE", "",
                   "The file extension for executables on the CPU that Tarnbench is running on e.g. .exe.");
    addSystemMacro("HostDLLExt", hostDLLExt,
                   "The file extension for dynamic link libraries used by the operating system that "
                   "Tarnbench is running on e.g. .dll, .so, .dylib.");
    addSystemMacro("HostDLL", std::string(hostDLLExt) + "_" + hostArch,
                   "The file extension for dynamic link libraries on the CPU that Tarnbench is running "
                   "on e.g. .dll.");
}

SystemMacros::~SystemMacros() = default;

void SystemMacros::addSystemMacro(const std::string &name, const std::string &value,
                                  const std::string &description) {
    if (!description.empty())
        macroDescriptions_.push_back({name, description});
    systemMacros()[name] = value;
}

void SystemMacros::addPathSystemMacro(const std::string &name, const FilePath &path,
                                      const std::string &description) {
    addSystemMacro(name, path.text(), description);
}

void addStudioMacros(SystemMacros &macros, const std::string &studioDir,
                     const std::vector<std::string> &globalMacroList) {
    const std::string studioName = Version::studioName;
    const std::string home = userHomeDirectory();
    macros.addSystemMacro("StudioMajorVersion", std::to_string(Version::major),
                          "The major release version of software.");
    macros.addSystemMacro("StudioMinorVersion", std::to_string(Version::minor),
                          "The minor release version of software.");
    macros.addSystemMacro("StudioRevision", std::to_string(Version::revision),
                          "The release revision of software.");
    macros.addSystemMacro("StudioName", studioName, "The full name of studio.");
    macros.addSystemMacro("StudioNameShort", Version::studioNameShort, "The short name of studio.");
    macros.addSystemMacro("Platform", lowerCase(Version::targetName), "The target platform.");
    macros.addSystemMacro("ProductName",
                          replaced(studioName, Version::studioNameShort, Version::productNameShort), "");
    macros.addSystemMacro("ProductNameShort", Version::productNameShort, "The product name.");
    macros.addPathSystemMacro("StudioDir", studioDir, "The install directory of the product.");
    macros.addPathSystemMacro("StudioUserDir", studioUserDirectory(), "The directory containing the user data.");
    macros.addPathSystemMacro("HomeDir", home, "Path to users home directory.");
    macros.addPathSystemMacro("DesktopDir", home + "/Desktop", "Path to users desktop directory.");
    macros.addPathSystemMacro("DocumentsDir", home + "/Documents", "Path to users documents directory.");
    macros.addPathSystemMacro("StudioExeName", "tarnbench", "The filename of the studio executable.");
    macros.addPathSystemMacro("StudioBuildToolExeName", "quillmake",
                              "The filename of the build tool executable.");
    macros.addPathSystemMacro("StudioBuildToolName", "Quillmake", "The name of the build tool executable.");
    macros.addPathSystemMacro("StudioScriptToolExeName", "quillscript",
                              "The filename of the script tool executable.");
    macros.addPathSystemMacro("StudioScriptToolName", "Quillscript", "The name of the script tool executable.");
    macros.addPathSystemMacro("StudioSimulatorExeName", "quillsim", "The filename of the simulator executable.");
    macros.addPathSystemMacro("StudioSimulatorName", "Quillsim", "The name of the simulator executable.");
    macros.addPathSystemMacro("StudioArchiveFileExt", "tbr", "The filename extension of a studio archive file.");
    macros.addPathSystemMacro("StudioPackageFileExt", "tbq", "The filename extension of a studio package file.");
    macros.addPathSystemMacro("StudioProjectFileExt", "tbp", "The filename extension of a studio project file.");
    macros.addPathSystemMacro("StudioSessionFileExt", "tbs", "The filename extension of a studio session file.");

    macros.globalMacros() = parseMacroList(globalMacroList);
}

void setPackagesDirectory(SystemMacros &macros, const std::string &directory) {
    const FilePath packages(expandMacrosWith(macros, MacroMap(), directory, true, true));
    const FilePath targets = packages.append("/targets");
    const FilePath samples = packages.append("/samples");
    macros.addPathSystemMacro("PackagesDir", packages, "Path to the users packages directory.");
    macros.addPathSystemMacro("TargetsDir", targets,
                              "Path to the targets subdirectory of the packages directory.");
    macros.addPathSystemMacro("SamplesDir", samples,
                              "Path to the samples subdirectory of the packages directory.");

    // A directory that can't be made shows in the file that can't be
    // written next.
    if (!targets.exists())
        makeDirectories(targets.text());
    const std::string frequencies = targets.text() + "/frequencies.xml";
    if (!FilePath(frequencies).exists() && !writeNewFile(frequencies, frequenciesFileText))
        throw HException("cannot create " + frequencies);
}

#include "environment/user_directories.h"

#include "environment/version.h"

#include <cctype>
#include <cstdlib>

namespace {

std::string &storedRootUserDirectory() {
    static std::string *directory = new std::string;
    return *directory;
}

// "Ostrand Instruments Limited" becomes "ostrand_instruments_limited".
std::string companyDirectoryName() {
    std::string name = Version::companyName;
    for (char &c : name)
        c = c == ' ' ? '_' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return name;
}

}  // namespace

std::string userHomeDirectory() {
    const char *home = std::getenv("HOME");
    return home ? home : "";
}

std::string userDataDirectory() { return userHomeDirectory() + "/.local/share"; }

std::string rootUserDirectory() {
    std::string &stored = storedRootUserDirectory();
    if (stored.empty()) {
        if (const char *fromEnvironment = std::getenv("VELDANE_ROOT_USER_DIR"))
            stored = fromEnvironment;
        else
            stored = userHomeDirectory() + "/." + companyDirectoryName();
    }
    return stored;
}

void setRootUserDirectory(const std::string &path) { storedRootUserDirectory() = path; }

std::string studioUserDirectory() {
    return rootUserDirectory() + "/" + Version::productName + "/v" + std::to_string(Version::major);
}

std::string crashDumpDirectory() { return studioUserDirectory() + "/dumps"; }

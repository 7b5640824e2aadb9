#include "environment/settings.h"

#include "project/xml/xml_document.h"
#include "support/file_utils.h"
#include "support/lock_file.h"

#include <cerrno>
#include <fcntl.h>
#include <fnmatch.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// How long a read or a write waits for another process's lock.
constexpr int lockTimeout = 1000;
// A settings file is a few kilobytes; anything beyond this counts as damaged.
constexpr off_t largestFile = off_t(16) << 20;

void replaceAll(std::string &text, std::string_view from, std::string_view to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

void appendEscaped(std::string &out, std::string_view value) {
    for (size_t i = 0; i < value.size(); ++i) {
        switch (value[i]) {
        case '"': out += "&quot;"; break;
        case '&': out += "&amp;"; break;
        case '\'': out += "&apos;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '\xc2':
            if (i + 1 < value.size() && value[i + 1] == '\xb7') {
                out += "&middot;";
                ++i;
                break;
            }
            [[fallthrough]];
        default: out += value[i];
        }
    }
}

// The whole of a regular file (or of the file a link names), or nullopt. A
// FIFO or a device is never opened for reading, so nothing can hang here.
std::optional<std::string> readRegularFile(const std::string &path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return std::nullopt;
    std::optional<std::string> text;
    struct stat status;
    if (fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= largestFile) {
        text.emplace();
        char buffer[8192];
        for (;;) {
            const ssize_t count = ::read(fd, buffer, sizeof buffer);
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0 || text->size() > size_t(largestFile)) {
                text.reset();
                break;
            }
            if (count == 0)
                break;
            text->append(buffer, size_t(count));
        }
    }
    ::close(fd);
    return text;
}

bool isSymbolicLink(const std::string &path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

// The lock over the file's reads and writes. A symbolic link in the lock's
// place isn't the lock of any program of ours: it goes, so that taking the
// lock never creates a file where it points.
bool takeLock(QTx::LockFile &lock) {
    if (isSymbolicLink(lock.name()))
        unlink(lock.name().c_str());
    return lock.lock(lockTimeout);
}

// Writes `text` to a new file `path`. A stale file or link of that name is
// removed first, and the new one is made exclusively without following links.
bool writeNewFile(const std::string &path, const std::string &text) {
    unlink(path.c_str());
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (fd < 0)
        return false;
    bool ok = true;
    for (size_t done = 0; ok && done < text.size();) {
        const ssize_t count = ::write(fd, text.data() + done, text.size() - done);
        if (count < 0 && errno == EINTR)
            continue;
        ok = count > 0;
        done += ok ? size_t(count) : 0;
    }
    ok = ::close(fd) == 0 && ok;
    if (!ok)
        unlink(path.c_str());
    return ok;
}

std::string directoryOf(const std::string &file) {
    const size_t slash = file.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : file.substr(0, slash);
}

}  // namespace

Settings::~Settings() { save(); }

std::string Settings::fileText(const Table &entries) {
    std::string text = "<!DOCTYPE Veldane_Settings_File>\n<settings>\n";
    for (const auto &[name, entry] : entries) {
        if (entry.state == State::Removed)
            continue;
        text += "  <setting name=\"";
        text += name;
        text += "\">";
        appendEscaped(text, entry.value);
        text += "</setting>\n";
    }
    text += "</settings>\n";
    return text;
}

std::optional<Settings::Table> Settings::parseText(const std::string &text) {
    // The file's two entities beyond XML's own.
    std::string resolved = text;
    replaceAll(resolved, "&middot;", "\xc2\xb7");
    replaceAll(resolved, "&nbsp;", " ");
    XMLDocument document(true);
    if (!document.parse(resolved) || !document.root)
        return std::nullopt;
    Table table;
    // Every setting element in document order; a later one of a name wins.
    const XMLNode *node = document.root;
    while (node) {
        const XMLElement *element = node->toElement();
        if (element && element->tagName == "setting") {
            const std::string *name = element->attribute("name");
            if (name && !name->empty()) {
                const XMLNode *child = element->firstChild;
                const bool hasText = child && (child->kind() == XMLNode::Kind::Data ||
                                               child->kind() == XMLNode::Kind::CDATASection);
                table[*name] = {hasText ? static_cast<const XMLTextNode *>(child)->text() : std::string(),
                                State::Read};
            }
        }
        if (node->firstChild) {
            node = node->firstChild;
            continue;
        }
        while (node && !node->nextSibling)
            node = node->parent;
        node = node ? node->nextSibling : nullptr;
    }
    return table;
}

void Settings::open(const std::string &file) {
    file_ = file;
    reload();
}

void Settings::settle(std::optional<std::string> text) {
    seenText_ = std::move(text);
    for (auto entry = entries_.begin(); entry != entries_.end();) {
        if (entry->second.state == State::Removed) {
            entry = entries_.erase(entry);
        } else {
            entry->second.state = State::Read;
            ++entry;
        }
    }
    modified_ = false;
}

bool Settings::reload() {
    if (file_.empty() || access(file_.c_str(), F_OK) != 0)
        return false;
    QTx::LockFile lock(file_ + ".lck");
    if (!takeLock(lock))
        return false;
    std::optional<std::string> text = readRegularFile(file_);
    std::optional<Table> table = text ? parseText(*text) : std::nullopt;
    if (!table)
        return false;
    entries_ = std::move(*table);
    settle(std::move(text));
    return true;
}

bool Settings::save() {
    bool merged = false;
    return write(merged);
}

bool Settings::write(bool &merged) {
    merged = false;
    if (file_.empty())
        return false;
    // The directory first: the lock file lives there too.
    makeDirectories(directoryOf(file_));
    QTx::LockFile lock(file_ + ".lck");
    if (!takeLock(lock))
        return false;

    // Another process has written since: its table, with this process's
    // changes over it. A file that can't be parsed is replaced as it is.
    const std::optional<std::string> current = readRegularFile(file_);
    if (current != seenText_) {
        if (std::optional<Table> theirs = current ? parseText(*current) : std::nullopt) {
            for (const auto &[name, entry] : entries_) {
                if (entry.state == State::Set)
                    (*theirs)[name] = {entry.value, State::Read};
                else if (entry.state == State::Removed)
                    theirs->erase(name);
            }
            entries_ = std::move(*theirs);
            merged = true;
        }
    }

    const std::string text = fileText(entries_);
    const std::string newFile = file_ + ".new";
    const std::string backup = file_ + ".bak";
    if (!writeNewFile(newFile, text))
        return false;
    // The old version becomes the backup by a second name, so that the file
    // itself never goes missing; the rename then replaces it in one step.
    // Renames move links themselves, never what they point to.
    unlink(backup.c_str());
    if (link(file_.c_str(), backup.c_str()) != 0 && errno != ENOENT)
        rename(file_.c_str(), backup.c_str());
    if (rename(newFile.c_str(), file_.c_str()) != 0) {
        unlink(newFile.c_str());
        return false;
    }
    settle(text);
    return true;
}

bool Settings::sync() {
    if (!modified_) {
        const std::optional<std::string> current = readRegularFile(file_);
        if (current && current != seenText_)
            reload();
        return false;
    }
    bool merged = false;
    write(merged);
    return merged;
}

std::string Settings::value(const std::string &name, const std::string &defaultValue) const {
    const auto found = entries_.find(name);
    if (found == entries_.end() || found->second.state == State::Removed)
        return defaultValue;
    return found->second.value;
}

void Settings::setValue(const std::string &name, const std::string &value, std::string &previous) {
    previous.clear();
    const auto found = entries_.find(name);
    if (found != entries_.end() && found->second.state != State::Removed) {
        if (found->second.value == value)
            return;
        previous = std::move(found->second.value);
    }
    entries_[name] = {value, State::Set};
    modified_ = true;
}

void Settings::remove(const std::string &name, std::string &previous) {
    previous.clear();
    const auto found = entries_.find(name);
    if (found == entries_.end() || found->second.state == State::Removed)
        return;
    previous = found->second.value;
    found->second.state = State::Removed;
    modified_ = true;
}

void Settings::removeMatching(const std::string &pattern) {
    std::erase_if(entries_, [&](const auto &entry) {
        return fnmatch(pattern.c_str(), entry.first.c_str(), FNM_NOESCAPE) == 0;
    });
    modified_ = true;
}

void Settings::reset() {
    entries_.clear();
    modified_ = false;
    if (file_.empty())
        return;
    QTx::LockFile lock(file_ + ".lck");
    takeLock(lock);
    const std::string backup = file_ + ".bak";
    unlink(backup.c_str());
    rename(file_.c_str(), backup.c_str());
    unlink(file_.c_str());
    seenText_.reset();
}

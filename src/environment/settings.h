#pragma once

#include <map>
#include <optional>
#include <string>

// A table of string pairs kept in a small XML file that several programs may
// read and write at once. The table remembers which entries this process has
// changed, so that a file that another process changed in the meantime is
// merged rather than overwritten. Every read and write of the file holds the
// lock <file>.lck; a write goes to <file>.new, which is then renamed over the
// file, so that the file is always a whole old or a whole new version, and the
// previous version stays as <file>.bak.
class Settings {
public:
    enum class State { Read, Set, Removed };
    struct Entry {
        std::string value;
        State state = State::Read;
    };
    using Table = std::map<std::string, Entry>;

    Settings() = default;
    Settings(const Settings &) = delete;
    Settings &operator=(const Settings &) = delete;
    // Always saves, so that the file exists once the object is gone.
    virtual ~Settings();

    // Stores the path and reloads.
    void open(const std::string &file);
    // Replaces the table by the file's. False, with the table as it was, if
    // the file is missing, locked by another for a second, or can't be parsed.
    bool reload();
    // Writes the table. If the file has changed since this process last read
    // or wrote it, this process's changes are first merged into what the file
    // holds now, so that no other process's change is lost. False if the lock
    // can't be had or the new file can't be written; the file then stays as
    // it was.
    bool save();
    // Without local changes: reloads a file that has changed. With them: saves,
    // merging. True if a merge took place.
    bool sync();

    // The value, or `defaultValue` for a missing or removed entry.
    std::string value(const std::string &name, const std::string &defaultValue = {}) const;
    // `previous` receives the value that is replaced, and is cleared for a new
    // entry; a value equal to the present one changes nothing.
    void setValue(const std::string &name, const std::string &value, std::string &previous);
    // Marks the entry removed; `previous` receives its value, or is cleared.
    void remove(const std::string &name, std::string &previous);
    // Deletes every entry whose whole name matches the wildcard pattern
    // ("*", "?", "[...]"), leaving no mark for a merge.
    void removeMatching(const std::string &pattern);
    // Empties the table and moves the file to <file>.bak.
    void reset();

    const std::string &file() const { return file_; }
    bool modified() const { return modified_; }
    const Table &entries() const { return entries_; }

    // The file's text for a table: entries in name order, removed ones left out.
    static std::string fileText(const Table &entries);
    // The table of a file's text; nullopt if it can't be parsed.
    static std::optional<Table> parseText(const std::string &text);

private:
    // The write under the lock; `merged` tells whether the file's newer
    // content was merged first.
    bool write(bool &merged);
    // After a read or a write of `text`: every entry as read, none removed.
    void settle(std::optional<std::string> text);

    Table entries_;
    std::string file_;
    // The text of the file as this process last read or wrote it; nullopt if
    // it hasn't seen one. A file whose text differs has changed since.
    std::optional<std::string> seenText_;
    bool modified_ = false;
};

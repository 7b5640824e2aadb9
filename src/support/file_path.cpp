#include "support/file_path.h"

#include <memory>

#include "support/file_info.h"
#include "support/normalise_path.h"

struct FilePath::Body {
    int references = 1;
    std::string text;
    bool normalised = false;
    std::unique_ptr<FileInfo> fileInfo;
};

FilePath::FilePath() : body_(new Body) {}

FilePath::FilePath(const std::string &text) : body_(new Body) { body_->text = text; }

FilePath::FilePath(const char *text) : body_(new Body) {
    if (text)
        body_->text = text;
}

FilePath::FilePath(const FilePath &other) noexcept : body_(other.body_) { ++body_->references; }

FilePath &FilePath::operator=(const FilePath &other) noexcept {
    ++other.body_->references;
    if (--body_->references == 0)
        delete body_;
    body_ = other.body_;
    return *this;
}

FilePath::~FilePath() {
    if (--body_->references == 0)
        delete body_;
}

FilePath FilePath::normalised(const std::string &text) {
    FilePath path(text);
    path.body_->normalised = true;
    return path;
}

void FilePath::detach() {
    if (body_->references == 1)
        return;
    Body *copy = new Body;
    copy->text = body_->text;
    copy->normalised = body_->normalised;
    --body_->references;
    body_ = copy;
}

void FilePath::assign(const std::string &text) {
    detach();
    body_->text = text;
    body_->normalised = false;
    body_->fileInfo.reset();
}

const std::string &FilePath::text() const {
    if (!body_->normalised) {
        normalisePath(body_->text);
        body_->normalised = true;
    }
    return body_->text;
}

bool FilePath::operator==(const FilePath &other) const {
    return body_ == other.body_ || text() == other.text();
}

bool FilePath::operator<(const FilePath &other) const {
    return body_ != other.body_ && text() < other.text();
}

FilePath FilePath::append(const std::string &text) const {
    FilePath result(*this);
    result += text;
    return result;
}

FilePath &FilePath::operator+=(const std::string &text) {
    detach();
    body_->text += text;
    body_->normalised = false;
    body_->fileInfo.reset();
    return *this;
}

FileInfo &FilePath::info() const {
    if (!body_->fileInfo)
        body_->fileInfo = std::make_unique<FileInfo>(text());
    return *body_->fileInfo;
}

const FileInfo &FilePath::fileInfo() const { return info(); }

void FilePath::refresh() const { info().refresh(); }

bool FilePath::exists() const {
    refresh();
    return info().exists();
}

bool FilePath::isWritable() const {
    refresh();
    return info().isWritable();
}

bool FilePath::isReadable() const {
    refresh();
    return info().isReadable();
}

FileTime FilePath::created() const {
    refresh();
    return info().created();
}

FileTime FilePath::lastModified() const {
    refresh();
    return info().lastModified();
}

FileTime FilePath::lastRead() const {
    refresh();
    return info().lastRead();
}

std::int64_t FilePath::size() const { return info().size(); }

bool FilePath::isDir() const { return info().isDir(); }

bool FilePath::isRelative() const { return info().isRelative(); }

std::string FilePath::absoluteFilePath() const { return info().absoluteFilePath(); }

// The names are of the text alone: asked for every file of a build, they
// make no FileInfo.
std::string FilePath::fileName() const { return std::string(fileNameOf(text())); }

std::string FilePath::baseName(bool complete) const { return std::string(baseNameOf(text(), complete)); }

std::string FilePath::suffix(bool complete) const { return std::string(suffixOf(text(), complete)); }

std::string FilePath::path(bool absolute) const {
    return absolute ? info().absolutePath() : info().path();
}

FilePath FilePath::dir(bool absolute) const { return FilePath(path(absolute)); }

std::vector<std::string> FilePath::components(bool absolute) const {
    const std::string whole = absolute ? absoluteFilePath() : text();
    std::vector<std::string> parts;
    size_t start = 0;
    while (start < whole.size()) {
        size_t end = whole.find('/', start);
        if (end == std::string::npos)
            end = whole.size();
        if (end > start)
            parts.emplace_back(whole, start, end - start);
        start = end + 1;
    }
    return parts;
}

bool FilePath::endsWith(const FilePath &other) const { return text().ends_with(other.text()); }

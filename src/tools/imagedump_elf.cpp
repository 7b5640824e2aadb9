#include "imagedump_elf.h"

#include <cerrno>
#include <cstring>
#include <fstream>

namespace imagedump {

namespace {

constexpr std::uint32_t sectionNoBits = 8;  // SHT_NOBITS: no contents in the file
constexpr std::uint64_t flagAlloc = 0x2;    // SHF_ALLOC
constexpr std::uint64_t flagTls = 0x400;    // SHF_TLS
constexpr std::uint32_t segmentLoad = 1;    // PT_LOAD

// Fixed-size fields of a byte range in the image's byte order.
struct Fields {
    const unsigned char *bytes;
    bool bigEndian;
    std::uint64_t get(std::size_t offset, std::size_t width) const {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < width; ++i) {
            const std::size_t at = bigEndian ? offset + i : offset + width - 1 - i;
            value = (value << 8) | bytes[at];
        }
        return value;
    }
};

// The places of the fields that are read, for one class of file.
struct Layout {
    std::size_t headerSize, word;
    std::size_t phoff, shoff, phentsize, phnum, shentsize, shnum;
    std::size_t sectionSize, shType, shFlags, shAddr, shOffset, shSize, shInfo;
    std::size_t segmentSize, pType, pOffset, pVaddr, pPaddr, pFilesz, pMemsz;
};

constexpr Layout layout32{52, 4, 28, 32, 42, 44, 46, 48, 40, 4, 8, 12, 16, 20, 28, 32, 0, 4, 8, 12, 16, 20};
constexpr Layout layout64{64, 8, 32, 40, 54, 56, 58, 60, 64, 4, 8, 16, 24, 32, 44, 56, 0, 8, 16, 24, 32, 40};

struct Segment {
    std::uint64_t offset, vaddr, paddr, filesz, memsz;
};

// True if [start, start + size) lies within [base, base + length).
bool within(std::uint64_t start, std::uint64_t size, std::uint64_t base, std::uint64_t length) {
    return start >= base && start - base <= length && size <= length - (start - base);
}

class Reader {
public:
    Reader(std::ifstream &in, std::uint64_t fileSize) : in_(in), fileSize_(fileSize) {}
    // count entries of entrySize bytes at offset, or false when they don't
    // lie within the file.
    bool table(std::uint64_t offset, std::uint64_t count, std::uint64_t entrySize, std::vector<unsigned char> &data) {
        if (count != 0 && entrySize > fileSize_ / count)
            return false;
        if (!within(offset, count * entrySize, 0, fileSize_))
            return false;
        data.resize(static_cast<std::size_t>(count * entrySize));
        in_.clear();
        in_.seekg(static_cast<std::streamoff>(offset));
        in_.read(reinterpret_cast<char *>(data.data()), static_cast<std::streamsize>(data.size()));
        return static_cast<std::uint64_t>(in_.gcount()) == data.size();
    }

private:
    std::ifstream &in_;
    std::uint64_t fileSize_;
};

}  // namespace

bool readAllocatedSections(const std::string &path, std::vector<AllocatedSection> &sections, std::string &error) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot open '" + path + "': " + std::strerror(errno);
        return false;
    }
    in.seekg(0, std::ios::end);
    const std::streamoff end = in.tellg();
    if (end < 0) {
        error = "cannot read '" + path + "'";
        return false;
    }
    const std::uint64_t fileSize = static_cast<std::uint64_t>(end);
    Reader reader(in, fileSize);
    const std::string damaged = "'" + path + "' is truncated or damaged: ";

    std::vector<unsigned char> header;
    if (!reader.table(0, 1, 16, header) || std::memcmp(header.data(), "\x7f" "ELF", 4) != 0 ||
        (header[4] != 1 && header[4] != 2) || (header[5] != 1 && header[5] != 2)) {
        error = "'" + path + "' is not an ELF image";
        return false;
    }
    const Layout &l = header[4] == 1 ? layout32 : layout64;
    const bool bigEndian = header[5] == 2;
    if (!reader.table(0, 1, l.headerSize, header)) {
        error = damaged + "its header is cut short";
        return false;
    }
    const Fields h{header.data(), bigEndian};
    const std::uint64_t shoff = h.get(l.shoff, l.word), shentsize = h.get(l.shentsize, 2);
    std::uint64_t shnum = h.get(l.shnum, 2), phnum = h.get(l.phnum, 2);
    const std::uint64_t phoff = h.get(l.phoff, l.word), phentsize = h.get(l.phentsize, 2);
    if (shoff == 0)
        shnum = 0;
    if (shnum > 0 && shentsize < l.sectionSize) {
        error = damaged + "its section headers are too small";
        return false;
    }
    // Counts too large for the header are kept in the first section header.
    std::vector<unsigned char> table;
    if (shoff != 0 && (shnum == 0 || phnum == 0xffff)) {
        if (shentsize < l.sectionSize || !reader.table(shoff, 1, shentsize, table)) {
            error = damaged + "its section headers lie outside the file";
            return false;
        }
        const Fields first{table.data(), bigEndian};
        if (shnum == 0)
            shnum = first.get(l.shSize, l.word);
        if (phnum == 0xffff)
            phnum = first.get(l.shInfo, 4);
    }

    std::vector<Segment> segments;
    if (phnum > 0 && phoff != 0) {
        if (phentsize < l.segmentSize || !reader.table(phoff, phnum, phentsize, table)) {
            error = damaged + "its program headers lie outside the file";
            return false;
        }
        for (std::uint64_t i = 0; i < phnum; ++i) {
            const Fields p{table.data() + i * phentsize, bigEndian};
            if (p.get(l.pType, 4) == segmentLoad)
                segments.push_back({p.get(l.pOffset, l.word), p.get(l.pVaddr, l.word), p.get(l.pPaddr, l.word),
                                    p.get(l.pFilesz, l.word), p.get(l.pMemsz, l.word)});
        }
    }
    if (shnum > 0 && !reader.table(shoff, shnum, shentsize, table)) {
        error = damaged + "its section headers lie outside the file";
        return false;
    }
    for (std::uint64_t i = 0; i < shnum; ++i) {
        const Fields s{table.data() + i * shentsize, bigEndian};
        const std::uint64_t flags = s.get(l.shFlags, l.word), size = s.get(l.shSize, l.word);
        const bool loaded = s.get(l.shType, 4) != sectionNoBits;
        // Thread-local zeroed data is a pattern for each thread, not memory.
        if (!(flags & flagAlloc) || size == 0 || (!loaded && (flags & flagTls)))
            continue;
        AllocatedSection section;
        section.runAddress = section.loadAddress = s.get(l.shAddr, l.word);
        section.size = size;
        section.loaded = loaded;
        // The load segment that holds the section tells where the image
        // keeps it; without one it stays where it runs.
        const std::uint64_t offset = s.get(l.shOffset, l.word);
        for (const Segment &segment : segments) {
            if (within(section.runAddress, size, segment.vaddr, segment.memsz) &&
                (!loaded || within(offset, size, segment.offset, segment.filesz))) {
                section.loadAddress = segment.paddr + (section.runAddress - segment.vaddr);
                break;
            }
        }
        sections.push_back(section);
    }
    return true;
}

}  // namespace imagedump

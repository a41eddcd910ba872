// The library as a file: what it exports and how it was linked.
#include <cxxabi.h>
#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

// Reads a 64-bit ELF file of this machine's byte order.
class ElfFile {
public:
    explicit ElfFile(const char* path) {
        std::ifstream stream(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(stream), {});
        EXPECT_GE(bytes_.size(), sizeof(Elf64_Ehdr)) << path;
        EXPECT_EQ(std::memcmp(bytes_.data(), ELFMAG, SELFMAG), 0) << path;
    }

    std::vector<Elf64_Phdr> segments(uint32_t type) const {
        const auto header = at<Elf64_Ehdr>(0);
        std::vector<Elf64_Phdr> found;
        for (int i = 0; i < header.e_phnum; i++) {
            const auto segment = at<Elf64_Phdr>(header.e_phoff + i * sizeof(Elf64_Phdr));
            if (segment.p_type == type) found.push_back(segment);
        }
        return found;
    }

    // Value of a dynamic entry; 0 when there is none.
    uint64_t dynamic(int64_t tag) const {
        for (const Elf64_Phdr& segment : segments(PT_DYNAMIC)) {
            for (uint64_t i = 0; i < segment.p_filesz; i += sizeof(Elf64_Dyn)) {
                const auto entry = at<Elf64_Dyn>(segment.p_offset + i);
                if (entry.d_tag == tag) return entry.d_un.d_val;
            }
        }
        return 0;
    }

    // Mangled names of all symbols that other libraries can bind to.
    std::vector<std::string> exports() const {
        std::vector<std::string> names;
        const auto header = at<Elf64_Ehdr>(0);
        for (int i = 0; i < header.e_shnum; i++) {
            const auto section = at<Elf64_Shdr>(header.e_shoff + i * sizeof(Elf64_Shdr));
            if (section.sh_type != SHT_DYNSYM) continue;
            const auto strings =
                at<Elf64_Shdr>(header.e_shoff + section.sh_link * sizeof(Elf64_Shdr));
            for (uint64_t s = 0; s < section.sh_size; s += sizeof(Elf64_Sym)) {
                const auto symbol = at<Elf64_Sym>(section.sh_offset + s);
                if (symbol.st_shndx != SHN_UNDEF && symbol.st_name != 0) {
                    names.emplace_back(bytes_.data() + strings.sh_offset + symbol.st_name);
                }
            }
        }
        return names;
    }

private:
    template <typename T>
    T at(uint64_t offset) const {
        T value{};
        EXPECT_LE(offset + sizeof(T), bytes_.size());
        if (offset + sizeof(T) <= bytes_.size()) {
            std::memcpy(&value, bytes_.data() + offset, sizeof(T));
        }
        return value;
    }

    std::vector<char> bytes_;
};

std::string demangled(const std::string& name) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> text(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), std::free);
    return status == 0 ? text.get() : name;
}

// The class (or function) of the library that an export belongs to; the whole name for others.
std::string ownerOf(const std::string& symbol) {
    std::string name = demangled(symbol);
    for (const char* prefix : {"vtable for ", "typeinfo for ", "typeinfo name for "}) {
        if (name.rfind(prefix, 0) == 0) name = name.substr(std::strlen(prefix));
    }
    constexpr const char* kNamespace = "GxFontEffect::";
    if (name.rfind(kNamespace, 0) != 0) return name;
    name = name.substr(std::strlen(kNamespace));
    return name.substr(0, name.find_first_of(":(["));
}

// Adding a name here adds it to what applications may link to.
const std::set<std::string> kExports = {
    "JNI_OnLoad",
    // base
    "Error",
    "File",
    "GxLog",
    "GxString",
    "List",
    "Mutex",
    // raster
    "GX_INT_SQRT_TABLE",
    "GxBitmap",
    "GxBlender",
    "GxRect",
    "fsqrt",
    // effect
    "GxECoreBase",
    "GxEffect",
    "GxProperty",
    "GxTextProperty",
    "GxStrokeProperty",
    "GxOuterShadowProperty",
    "GxInnerShadowProperty",
    "GxOuterGlowProperty",
    "GxInnerGlowProperty",
    "GxLinearGradientProperty",
    "GxRadialGradientProperty",
    "GxPatternProperty",
    "GxBevelProperty",
    "GxEmbossProperty",
    // font
    "DeleteFontEntry",
    "DeleteFontFamily",
    "FontManager",
    // text
    "GxFontDrawing",
    "GxTextInstanceManager",
    "GxTextObject",
    "GxView",
};
// The effect cores and their helpers (functions begin in lower case), for callers that drive one by
// itself.
const std::set<std::string> kCores = {
    "GxText",      "GxStroke",    "GxOuterShadow",    "GxInnerShadow",
    "GxOuterGlow", "GxInnerGlow", "GxLinearGradient", "GxRadialGradient",
    "GxPattern",   "GxBevel",     "GxEmboss",
};

TEST(LibraryFileTest, ExportsTheEntryPointAndTheClassesForNativeCallers) {
    std::set<std::string> exported;
    for (const std::string& symbol : ElfFile(GXTEXT_LIBRARY_FILE).exports()) {
        const std::string owner = ownerOf(symbol);
        const bool helper = owner != "fsqrt" && std::islower(static_cast<uint8_t>(owner[0]));
        if (!helper && !kCores.count(owner)) exported.insert(owner);
    }
    EXPECT_EQ(exported, kExports);
}

TEST(LibraryFileTest, IsLinkedHardened) {
    const ElfFile library(GXTEXT_LIBRARY_FILE);
    EXPECT_EQ(library.segments(PT_GNU_RELRO).size(), 1u);
    EXPECT_TRUE(library.dynamic(DT_FLAGS_1) & DF_1_NOW);
    EXPECT_TRUE(library.dynamic(DT_FLAGS_1) & DF_1_NODELETE);
    EXPECT_EQ(library.dynamic(DT_TEXTREL), 0u);
    for (const Elf64_Phdr& stack : library.segments(PT_GNU_STACK)) {
        EXPECT_FALSE(stack.p_flags & PF_X) << "executable stack";
    }
    ASSERT_FALSE(library.segments(PT_LOAD).empty());
    for (const Elf64_Phdr& load : library.segments(PT_LOAD)) {
        EXPECT_GE(load.p_align, 16384u);
        EXPECT_EQ(load.p_offset % 16384, load.p_vaddr % 16384);
        EXPECT_FALSE((load.p_flags & PF_X) && (load.p_flags & PF_W));
    }
}

}  // namespace

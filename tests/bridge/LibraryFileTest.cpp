// The library as a file: what it exports and how it was linked.
#include <cxxabi.h>
#include <elf.h>
#include <gtest/gtest.h>
#include <link.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <vector>

namespace {

// What an ELF file for the machine that this program is for says of itself.
class ElfFile {
public:
    explicit ElfFile(const char* path) {
        std::ifstream stream(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(stream), {});
        EXPECT_EQ(std::string(bytes_.data(), std::min<size_t>(bytes_.size(), SELFMAG)), ELFMAG)
            << path;
        const auto header = at<ElfW(Ehdr)>(0);
        machine = header.e_machine;
        for (size_t i = 0; i < header.e_phnum; i++) {
            segments_.push_back(at<ElfW(Phdr)>(header.e_phoff + i * sizeof(ElfW(Phdr))));
        }
        for (size_t i = 0; i < header.e_shnum; i++) read(header, sectionOf(header, i));
    }

    std::vector<ElfW(Phdr)> segments(uint32_t type) const {
        std::vector<ElfW(Phdr)> found;
        std::copy_if(segments_.begin(), segments_.end(), std::back_inserter(found),
                     [=](const ElfW(Phdr) & segment) { return segment.p_type == type; });
        return found;
    }

    // Value of a dynamic entry; 0 when there is none.
    uint64_t dynamic(uint64_t tag) const {
        const auto found = dynamic_.find(tag);
        return found == dynamic_.end() ? 0 : found->second;
    }

    uint16_t machine = 0;
    std::vector<std::string> needed;   // names of libraries
    std::vector<std::string> exports;  // mangled names of what other libraries can bind to
    std::vector<std::string> imports;  // of what others must have

private:
    ElfW(Shdr) sectionOf(const ElfW(Ehdr) & header, size_t i) const {
        return at<ElfW(Shdr)>(header.e_shoff + i * sizeof(ElfW(Shdr)));
    }
    void read(const ElfW(Ehdr) & header, const ElfW(Shdr) & section) {
        if (section.sh_type != SHT_DYNSYM && section.sh_type != SHT_DYNAMIC) return;
        const char* names = bytes_.data() + sectionOf(header, section.sh_link).sh_offset;
        for (uint64_t i = 0; i < section.sh_size; i += section.sh_entsize) {
            if (section.sh_type == SHT_DYNSYM) {
                const auto symbol = at<ElfW(Sym)>(section.sh_offset + i);
                if (symbol.st_name == 0) continue;
                auto& list = symbol.st_shndx == SHN_UNDEF ? imports : exports;
                list.emplace_back(names + symbol.st_name);
            } else {
                const auto entry = at<ElfW(Dyn)>(section.sh_offset + i);
                dynamic_[static_cast<uint64_t>(entry.d_tag)] = entry.d_un.d_val;
                if (entry.d_tag == DT_NEEDED) needed.emplace_back(names + entry.d_un.d_val);
            }
        }
    }

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
    std::vector<ElfW(Phdr)> segments_;
    std::map<uint64_t, uint64_t> dynamic_;
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
// Natives of Java classes that are looked up by name.
constexpr const char* kByName = "Java_com_norvale_android_sdk_gxe_TextExtension_";
const std::set<std::string> kNativesByName = {"addFamily", "check",   "covers", "dress",
                                              "fade",      "measure", "render", "setFamilies"};
// The effect cores and their helpers (functions begin in lower case), for callers that drive one by
// itself.
const std::set<std::string> kCores = {
    "GxText",      "GxStroke",    "GxOuterShadow",    "GxInnerShadow",
    "GxOuterGlow", "GxInnerGlow", "GxLinearGradient", "GxRadialGradient",
    "GxPattern",   "GxBevel",     "GxEmboss",
};

TEST(LibraryFileTest, ExportsTheEntryPointAndTheClassesForNativeCallers) {
    std::set<std::string> exported;
    std::set<std::string> byName;
    for (const std::string& symbol : ElfFile(GXTEXT_LIBRARY_FILE).exports) {
        const std::string owner = ownerOf(symbol);
        const bool helper = owner != "fsqrt" && std::islower(static_cast<uint8_t>(owner[0]));
        if (symbol.rfind(kByName, 0) == 0) {
            byName.insert(symbol.substr(std::strlen(kByName)));
        } else if (!helper && !kCores.count(owner)) {
            exported.insert(owner);
        }
    }
    EXPECT_EQ(exported, kExports);
    EXPECT_EQ(byName, kNativesByName);
}

TEST(LibraryFileTest, IsLinkedHardened) {
    const ElfFile library(GXTEXT_LIBRARY_FILE);
    EXPECT_EQ(library.segments(PT_GNU_RELRO).size(), 1u);
    EXPECT_TRUE(library.dynamic(DT_FLAGS_1) & DF_1_NOW);
    EXPECT_TRUE(library.dynamic(DT_FLAGS_1) & DF_1_NODELETE);
    EXPECT_EQ(library.dynamic(DT_TEXTREL), 0u);
    for (const auto& stack : library.segments(PT_GNU_STACK)) {
        EXPECT_FALSE(stack.p_flags & PF_X) << "executable stack";
    }
    ASSERT_FALSE(library.segments(PT_LOAD).empty());
    for (const auto& load : library.segments(PT_LOAD)) {
        EXPECT_GE(load.p_align, 16384u);
        EXPECT_EQ(load.p_offset % 16384, load.p_vaddr % 16384);
        EXPECT_FALSE((load.p_flags & PF_X) && (load.p_flags & PF_W));
    }
}

#ifdef GXTEXT_LIBRARY_IS_RELEASE

std::set<std::string> words(const char* text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

// Of the C library. Adding a name here says that Android's has it at API level 24.
const std::set<std::string> kCFunctions = words(
    "abort access calloc ceilf close expf fclose feof ferror fflush fileno floor floorf fopen "
    "fread "
    "free fseek fstat fstatvfs fsync ftell fwrite hypot ldexp localeconv log2 madvise malloc "
    "memchr memcmp "
    "memcpy memmove memset mmap munmap open pow pthread_mutex_destroy pthread_mutex_init "
    "pthread_mutex_lock pthread_mutex_unlock pthread_once pthread_self read realloc rename "
    "roundf sincosf snprintf sqrt sqrtf strcmp strcpy strlen strnlen strpbrk strrchr strtod "
    "strtoll strtoull tanf "
    "truncf unlink vsnprintf wcscmp wcslen wcsncmp wcsnlen wmemchr wmemcmp wmemcpy wmemmove");
// What compilers call on Linux by themselves; those for Android bring their own.
const std::set<std::string> kCompilerFunctions = words(
    "_ITM_deregisterTMCloneTable _ITM_registerTMCloneTable _Unwind_Resume __dynamic_cast "
    "__errno_location __getauxval __gmon_start__ __gxx_personality_v0 __libc_single_threaded "
    "__once_proxy __tls_get_addr bcmp");
// Begin the names of libraries that are linked in for Android, and of their functions.
const char* const kLibraries[] = {"libfreetype.", "libharfbuzz.", "libhwy.",  "libicudata.",
                                  "libicuuc.",    "libstdc++.",   "libgcc_s."};
const char* const kFunctions[] = {"FT_",     "hb_",   "u_",   "ubidi_", "ublock_",
                                  "_ZN3hwy", "_ZNKS", "_ZNS", "_ZS",    "_ZTI",
                                  "_ZTV",    "_Zd",   "_Zn",  "__cxa_", "__aeabi_"};

bool beginsWithOne(const std::string& name, std::span<const char* const> prefixes) {
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [&](const char* prefix) { return name.rfind(prefix, 0) == 0; });
}

TEST(LibraryFileTest, NeedsNothingThatAndroidLacks) {
    const ElfFile library(GXTEXT_LIBRARY_FILE);
    for (const std::string& name : library.needed) {
        constexpr const char* kOfTheSystem[] = {"libc.", "libm.", "liblog.", "ld-linux"};
        EXPECT_TRUE(beginsWithOne(name, kOfTheSystem) || beginsWithOne(name, kLibraries)) << name;
    }
    for (const std::string& name : library.imports) {
        EXPECT_TRUE(kCFunctions.count(name) || kCompilerFunctions.count(name) ||
                    name == "__android_log_print" || beginsWithOne(name, kFunctions))
            << demangled(name);
    }
}

// Stripped, with the text libraries outside. A change that is worth its bytes raises the figure:
// AVX-512 took 200 kB, which Android's x86-64 goes without; the reader of styles, which Java
// dresses its texts with, takes 320 kB, and two thirds of that on ARM; glyphs with colours take
// 90 kB.
TEST(LibraryFileTest, IsSmall) {
    const ElfFile library(GXTEXT_LIBRARY_FILE);
    const std::map<uint16_t, uint64_t> ceilings = {
        {EM_X86_64, 1'790'000}, {EM_AARCH64, 1'140'000}, {EM_ARM, 1'000'000}};
    uint64_t size = 0;
    for (const auto& load : library.segments(PT_LOAD)) size += load.p_filesz;
    ASSERT_TRUE(ceilings.count(library.machine));
    EXPECT_LE(size, ceilings.at(library.machine));
}

#endif

}  // namespace

#include "minikin/LikelyScript.h"

#include <algorithm>
#include <string>
#include <vector>

namespace minikin {
namespace {

struct ScriptLanguages {
    std::string_view script;
    std::string_view languages;
};

// Languages of CLDR's likely subtags whose script is not Latin.
constexpr ScriptLanguages kLanguages[] = {
    {"Aghb", "udi"},
    {"Ahom", "aho"},
    {"Arab",
     "ar fa ks ps sd ug ur aeb ajt apc apd arq ars ary arz avl bal bej bft bgn bqi brh cja "
     "ckb dcc dgl fia fub gbz gjk gju glk gwc gwt haz hnd hno kby khw kvx kxp kzh lah lki "
     "lrc luz mde mfa mki mvy mzn oru ota phl prd rmt scl sdh shu skr swb trw wni zdj"},
    {"Armi", "arc"},
    {"Armn", "hy"},
    {"Avst", "ae"},
    {"Bamu", "bax"},
    {"Bass", "bsq"},
    {"Beng", "as bn bpy grt mni rkt syl unr unx"},
    {"Brah", "pka"},
    {"Cakm", "ccp"},
    {"Cans", "cr iu oj crk crl csw nsk ojs"},
    {"Cari", "xcr"},
    {"Cham", "cjm"},
    {"Cher", "chr"},
    {"Chrs", "xco"},
    {"Copt", "cop"},
    {"Cprt", "grc"},
    {"Cyrl",
     "ab av ba be bg ce cu cv kk kv ky mk mn os ru sr tg tt uk abq ady alt bua chm crh dar "
     "inh kaa kbd koi krc kum lbe lez mdf mrj myv rue sah tyv udm"},
    {"Deva",
     "hi mr ne sa awa bap bfy bgc bhb bhi bho bjj bra brx btv doi dty gbm gom gvr hne hoc "
     "hoj jml kfr kfy khn kok kru kxl lif mag mai mgp mrd mtr mwr new noe raj rjs sck srx "
     "swv taj tdg tdh thl thq thr tkt wbr wtm xnr xsr"},
    {"Egyp", "egy"},
    {"Ethi", "am ti bcq bji bst byn drs gez gmv gof hdy kqy ktb kxc mdx mym sgw tig wal"},
    {"Geor", "ka xmf"},
    {"Gong", "wsg"},
    {"Gonm", "esg"},
    {"Goth", "got"},
    {"Grek", "el bgx pnt tsd"},
    {"Gujr", "gu"},
    {"Guru", "pa"},
    {"Hans", "zh gan hak hsn lzh nan wuu"},
    {"Hant", "yue"},
    {"Hebr", "he yi lad"},
    {"Hluw", "hlu"},
    {"Hmnp", "hnj mww"},
    {"Ital", "ett"},
    {"Jpan", "ja"},
    {"Kali", "eky"},
    {"Kana", "ryu"},
    {"Kawi", "kaw"},
    {"Khar", "pra"},
    {"Khmr", "km"},
    {"Kits", "zkt"},
    {"Knda", "kn tcy"},
    {"Kore", "ko"},
    {"Lana", "nod"},
    {"Laoo", "lo kjg"},
    {"Lepc", "lep"},
    {"Lina", "lab"},
    {"Lisu", "lis"},
    {"Lyci", "xlc"},
    {"Lydi", "xld"},
    {"Mand", "myz"},
    {"Mani", "xmn"},
    {"Medf", "dmf"},
    {"Merc", "xmr"},
    {"Mlym", "ml"},
    {"Mong", "khk"},
    {"Mroo", "mro"},
    {"Mymr", "my kht mnw shn"},
    {"Narb", "xna"},
    {"Nkoo", "nqo"},
    {"Nshu", "zhx"},
    {"Ogam", "sga"},
    {"Olck", "sat"},
    {"Orkh", "otk"},
    {"Orya", "or"},
    {"Osge", "osa"},
    {"Ougr", "oui"},
    {"Pauc", "ctd"},
    {"Phli", "pal"},
    {"Phnx", "phn"},
    {"Plrd", "hmd"},
    {"Prti", "xpr"},
    {"Rohg", "rhg"},
    {"Runr", "non"},
    {"Samr", "smp"},
    {"Sarb", "xsa"},
    {"Saur", "saz"},
    {"Sgnw", "ase"},
    {"Sinh", "si"},
    {"Sogd", "sog"},
    {"Sora", "srb"},
    {"Soyo", "cmg"},
    {"Syrc", "syr"},
    {"Tale", "tdd"},
    {"Talu", "khb"},
    {"Taml", "ta bfq"},
    {"Tang", "txg"},
    {"Tavt", "blt"},
    {"Telu", "te gon lmn wbq"},
    {"Tfng", "rif shi zgh"},
    {"Thaa", "dv"},
    {"Thai", "th kdt kxm lcp lwl sou tts"},
    {"Tibt", "bo dz tsj"},
    {"Tnsa", "nst"},
    {"Toto", "txo"},
    {"Ugar", "uga"},
    {"Vaii", "vai"},
    {"Wcho", "nnp"},
    {"Xpeo", "peo"},
    {"Xsux", "akk"},
    {"Yiii", "ii"},
};

// Codes that are no longer used, and three letters where there are two, each before the code in
// use; from CLDR and ISO 639.
constexpr std::string_view kReplaced =
    "aam aas aar aa abk ab adp dz afr af aka ak amh am ara ar arg an asm as aue ktz ava av "
    "ave ae aym ay ayx nun aze az bak ba bam bm bel be ben bn bgm bcg bis bi bjd drl bod bo "
    "bos bs bre br bul bg cat ca ccq rki ces cs cha ch che ce chu cu chv cv cjr mom cka cmr "
    "cmk xch cor kw cos co coy pij cqu quh cre cr cym cy dan da deu de div dv drh khk drw "
    "prs dzo dz ell el eng en epo eo est et eus eu ewe ee fao fo fas fa fij fj fin fi fra "
    "fr fry fy ful ff gav dev gfx vaj ggn gvr gla gd gle ga glg gl glv gv grn gn gti nyc "
    "guj gu guv duz hat ht hau ha heb he her hz hin hi hmo ho hrr jal hrv hr hun hu hye hy "
    "ibi opa ibo ig ido io iii ii iku iu ile ie ilw gal in id ina ia ind id ipk ik isl is "
    "ita it iw he jav jv jaw jv jeg oyb ji yi jpn ja jw jv kal kl kan kn kas ks kat ka kau "
    "kr kaz kk kgc tdf kgh kml khm km kik ki kin rw kir ky koj kwv kom kv kon kg kor ko krm "
    "bmf ktr dtp kua kj kur ku kvs gdj kwq yam kxe tvd kzj dtp kzt dtp lao lo lat la lav lv "
    "lii raq lim li lin ln lit lt lmm rmx ltz lb lub lu lug lg mah mh mal ml mar mr meg cir "
    "mkd mk mlg mg mlt mt mo ro mol ro mon mn mri mi msa ms mst mry mwj vaj mya my myt mry "
    "nad xny nau na nav nv nbl nr ncp kdz nde nd ndo ng nep ne nld nl nno nn nnx ngv nob nb "
    "nor no nts pij nya ny oci oc oji oj ori or orm om oss os oun vaj pan pa pcr adx pli pi "
    "pmc huw pmu phr pol pl por pt ppa bfy ppr lcq pry prt pus ps puz pub que qu roh rm ron "
    "ro run rn rus ru sag sg san sa sca hle sin si skk oyb slk sk slv sl sme se smo sm sna "
    "sn snd sd som so sot st spa es sqi sq srd sc srp sr ssw ss sun su swa sw swe sv tah ty "
    "tam ta tat tt tdu dtp tel te tgk tg tgl tl tha th thc tpo thx oyb tie ras tir ti tkk "
    "twm tlw weo tmp tyj tne kak tnf prs ton to tsf taj tsn tn tso ts tuk tk tur tr twi tw "
    "uig ug ukr uk uok ema urd ur uzb uz ven ve vie vi vol vo wln wa wol wo xba cax xho xh "
    "xia acn xkh waw xsj suj ybd rki yid yi yma lrr ymt mtm yor yo yos zom yuu yug zha za "
    "zho zh zul zu";

struct RegionalScript {
    std::string_view language;
    std::string_view script;
    std::string_view regions;
};

// Where a region changes the script, from the same source.
constexpr RegionalScript kRegional[] = {
    {"az", "Arab", "IQ IR"}, {"az", "Cyrl", "RU"},
    {"ha", "Arab", "CM SD"}, {"kk", "Arab", "AF CN IR MN"},
    {"ku", "Arab", "LB"},    {"ky", "Arab", "CN"},
    {"ky", "Latn", "TR"},    {"mn", "Mong", "CN"},
    {"ms", "Arab", "CC"},    {"pa", "Arab", "PK"},
    {"sd", "Deva", "IN"},    {"sr", "Latn", "ME RO RU TR"},
    {"tg", "Arab", "PK"},    {"ug", "Cyrl", "KZ MN"},
    {"uz", "Arab", "AF"},    {"uz", "Cyrl", "CN"},
    {"yue", "Hans", "CN"},   {"zh", "Hant", "AU BN GB GF HK ID MO PA PF PH SR TH TW US VN"},
};

// What a language code stands for: a script, a newer code.
struct LanguageEntry {
    std::string_view language;
    std::string_view value;
    bool operator<(const LanguageEntry& other) const { return language < other.language; }
};

// Words of a blank-separated list.
template <typename Visit>
void forEachWord(std::string_view words, Visit visit) {
    while (!words.empty()) {
        const size_t end = std::min(words.find(' '), words.size());
        visit(words.substr(0, end));
        words.remove_prefix(std::min(end + 1, words.size()));
    }
}

const std::vector<LanguageEntry>& scriptsByLanguage() {
    static const std::vector<LanguageEntry> sorted = [] {
        std::vector<LanguageEntry> result;
        for (const ScriptLanguages& entry : kLanguages) {
            forEachWord(entry.languages, [&](std::string_view language) {
                result.push_back({language, entry.script});
            });
        }
        std::sort(result.begin(), result.end());
        return result;
    }();
    return sorted;
}

const std::vector<LanguageEntry>& currentByReplaced() {
    static const std::vector<LanguageEntry> sorted = [] {
        std::vector<LanguageEntry> result;
        bool isReplaced = true;
        forEachWord(kReplaced, [&](std::string_view language) {
            if (isReplaced) {
                result.push_back({language, {}});
            } else {
                result.back().value = language;
            }
            isReplaced = !isReplaced;
        });
        std::sort(result.begin(), result.end());
        return result;
    }();
    return sorted;
}

std::string_view find(const std::vector<LanguageEntry>& entries, std::string_view language,
                      std::string_view otherwise) {
    const auto it = std::lower_bound(entries.begin(), entries.end(), LanguageEntry{language, {}});
    return it != entries.end() && it->language == language ? it->value : otherwise;
}

}  // namespace

std::string_view likelyScript(std::string_view language, std::string_view region) {
    for (const RegionalScript& entry : kRegional) {
        if (entry.language != language) continue;
        bool found = false;
        forEachWord(entry.regions, [&](std::string_view word) { found = found || word == region; });
        if (found) return entry.script;
    }
    return find(scriptsByLanguage(), language, "Latn");
}

std::string_view currentLanguage(std::string_view language) {
    return find(currentByReplaced(), language, language);
}

}  // namespace minikin

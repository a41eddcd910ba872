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

// Languages of CLDR's likely subtags whose script is not Latin, with the three-letter twins
// of two-letter codes that are in use.
constexpr ScriptLanguages kLanguages[] = {
    {"Ahom", "aho"},
    {"Arab",
     "ar fa ks ps sd ug ur aeb ajt apc apd ara arq ars ary arz avl bal bej bft bgn bqi brh "
     "cja ckb dcc dgl fas fia fub gbz gjk gju glk gwc gwt haz hnd hno kas kby khw kvx kxp "
     "kzh lah lki lrc luz mde mfa mki mvy mzn oru ota phl prd pus rmt scl sdh shu skr snd "
     "swb trw uig urd wni zdj"},
    {"Armn", "hy hye"},
    {"Avst", "ae ave"},
    {"Bamu", "bax"},
    {"Bass", "bsq"},
    {"Beng", "as bn asm ben bpy grt mni rkt syl unr unx"},
    {"Cakm", "ccp"},
    {"Cans", "cr iu oj cre crk crl csw iku nsk oji ojs"},
    {"Cham", "cjm"},
    {"Cher", "chr"},
    {"Copt", "cop"},
    {"Cyrl",
     "ab av ba be bg ce cu cv kk kv ky mk mn os ru sr tg tt uk abk abq ady alt ava bak bel "
     "bua bul che chm chu chv crh dar inh kaa kaz kbd kir koi kom krc kum lbe lez mdf mkd "
     "mon mrj myv oss rue rus sah srp tat tgk tyv udm ukr"},
    {"Deva",
     "hi mr ne sa awa bap bfy bgc bhb bhi bho bjj bra brx btv doi dty gbm ggn gom gvr hin "
     "hne hoc hoj jml kfr kfy khn kok kru kxl lif mag mai mar mgp mrd mtr mwr nep new noe "
     "ppa raj rjs san sck srx swv taj tdg tdh thl thq thr tkt tsf wbr wtm xnr xsr"},
    {"Ethi", "am ti amh bcq bji bst byn drs gez gmv gof hdy kqy ktb kxc mdx mym sgw tig tir wal"},
    {"Geor", "ka kat xmf"},
    {"Goth", "got"},
    {"Grek", "el bgx ell pnt tsd"},
    {"Gujr", "gu guj"},
    {"Guru", "pa pan"},
    {"Hans", "zh gan hak hsn lzh nan wuu zho"},
    {"Hant", "yue"},
    {"Hebr", "he iw ji yi heb lad yid"},
    {"Hmnp", "hnj mww"},
    {"Jpan", "ja jpn"},
    {"Kali", "eky"},
    {"Khmr", "km khm"},
    {"Knda", "kn kan tcy"},
    {"Kore", "ko kor"},
    {"Lana", "nod"},
    {"Laoo", "lo kjg lao"},
    {"Lepc", "lep"},
    {"Lisu", "lis"},
    {"Mand", "myz"},
    {"Medf", "dmf"},
    {"Mlym", "ml mal"},
    {"Mong", "drh"},
    {"Mroo", "mro"},
    {"Mymr", "my kht mnw mya shn"},
    {"Nkoo", "nqo"},
    {"Olck", "sat"},
    {"Orya", "or ori"},
    {"Osge", "osa"},
    {"Pauc", "ctd"},
    {"Plrd", "hmd"},
    {"Rohg", "rhg"},
    {"Saur", "saz"},
    {"Sinh", "si sin"},
    {"Sora", "srb"},
    {"Syrc", "syr"},
    {"Tale", "tdd"},
    {"Talu", "khb"},
    {"Taml", "ta bfq tam"},
    {"Tavt", "blt"},
    {"Telu", "te gon lmn tel wbq"},
    {"Tfng", "rif shi zgh"},
    {"Thaa", "dv div"},
    {"Thai", "th kdt kxm lcp lwl sou tha tts"},
    {"Tibt", "bo dz adp bod dzo tsj"},
    {"Toto", "txo"},
    {"Vaii", "vai"},
    {"Wcho", "nnp"},
    {"Yiii", "ii iii"},
};

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

struct LanguageScript {
    std::string_view language;
    std::string_view script;
    bool operator<(const LanguageScript& other) const { return language < other.language; }
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

const std::vector<LanguageScript>& sortedLanguages() {
    static const std::vector<LanguageScript> sorted = [] {
        std::vector<LanguageScript> result;
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

}  // namespace

std::string_view likelyScript(std::string_view language, std::string_view region) {
    for (const RegionalScript& entry : kRegional) {
        if (entry.language != language) continue;
        bool found = false;
        forEachWord(entry.regions, [&](std::string_view word) { found = found || word == region; });
        if (found) return entry.script;
    }
    const std::vector<LanguageScript>& languages = sortedLanguages();
    const auto it = std::lower_bound(languages.begin(), languages.end(),
                                     LanguageScript{language, std::string_view()});
    return it != languages.end() && it->language == language ? it->script : "Latn";
}

}  // namespace minikin

// Rows out of bytes, and the names of their pictures.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "batch/OutputPattern.h"
#include "batch/RowReader.h"
#include "scene/SceneError.h"

namespace gxtext {
namespace {

using testing::HasSubstr;

// "3 c style=x.json text="Hi" size=4" or "4: $.size: reason"
std::string shown(const Row& row) {
    std::string text = std::to_string(row.number);
    if (row.error) return text + ": " + row.error->place + ": " + row.error->reason;
    text += " " + row.id;
    if (!row.style.empty()) text += " style=" + row.style;
    for (const StyleSetting& setting : row.settings) {
        text += " " + setting.path + "=" + setting.value.dump();
    }
    return text;
}

// In pieces of this many bytes, which must make no difference.
std::vector<std::string> rowsOf(RowFormat format, const std::string& bytes, size_t piece) {
    std::vector<std::string> rows;
    const RowReader::Sink sink = [&](Row&& row) { rows.push_back(shown(row)); };
    const auto reader = RowReader::make(format);
    for (size_t i = 0; i < bytes.size(); i += piece) reader->feed(bytes.substr(i, piece), sink);
    reader->finish(sink);
    return rows;
}

void expectRows(RowFormat format, const std::string& bytes,
                const std::vector<std::string>& expected) {
    for (const size_t piece : {size_t{1}, size_t{7}, bytes.size()}) {
        const std::vector<std::string> rows = rowsOf(format, bytes, piece);
        ASSERT_EQ(rows.size(), expected.size());
        for (size_t i = 0; i < rows.size(); i++) EXPECT_THAT(rows[i], HasSubstr(expected[i]));
    }
}

TEST(RowReader, ReadsJsonLinesAndTellsWhatIsWrongWithOne) {
    expectRows(
        RowFormat::kJsonLines,
        "\xEF\xBB\xBF{\"text\":\"Hi\"}\r\n\n  \n"
        R"({"id":"c","style":"x.json","effects[0].color":"#FF0000","size":1.50,"bold":null})"
        "\n{\"id\":7}\n[1]\n{\"text\":\n{\"text\":\"a\",\"text\":\"b\"}\n"
        "{\"fill\":{\"a\":1,\"a\":2}}\n{\"id\":[]}\n{\"style\":3}\n{\"text\":\"\xFF\"}\n" +
            std::string("{\"text\":") + std::string(20, '[') + "\n{\"text\":\"last\"}",
        {"1 1 text=\"Hi\"", "2 c style=x.json effects[0].color=\"#FF0000\" size=1.5 bold=null",
         "3 7", "4: $: a row is a JSON object", "5: $.text: ", "6: $.text: given twice",
         "7: $.fill.a: given twice", "8: $.id: ", "9: $.style: ", "10: $.text: ", "11: $.text",
         "12 12 text=\"last\""});
}

TEST(RowReader, ReadsCommaSeparatedValues) {
    expectRows(
        RowFormat::kCsv,
        "\xEF\xBB\xBFid, size ,text,effects[0].color\r\n"
        "a,40,\"Say \"\"hi\"\",\nyou\", \r\n"
        ",,123,#FF0000\r\n\r\n"
        "b,1\n"
        "c,true, padded ,null\n"
        "\xFF,,,",
        {"1 a size=40 text=\"Say \\\"hi\\\",\\nyou\" effects[0].color=\" \"",
         "2 2 text=\"123\" effects[0].color=\"#FF0000\"", "3: $: 2 cells; the header has 4",
         "4 c size=true text=\" padded \" effects[0].color=null", "5: $.id: not valid UTF-8"});
}

TEST(RowReader, NeverHoldsMoreThanARow) {
    const std::string longText(RowReader::kMaxRowBytes, 'a');
    EXPECT_THAT(
        rowsOf(RowFormat::kJsonLines, "{\"text\":\"" + longText + "\"}\n{\"text\":\"b\"}", 65536),
        testing::ElementsAre("1: $: longer than 1048576 bytes", "2 2 text=\"b\""));
    EXPECT_THAT(rowsOf(RowFormat::kCsv, "text,id\n" + longText + ",1\nb,\n", 65536),
                testing::ElementsAre("1: $: longer than 1048576 bytes", "2 2 text=\"b\""));
}

TEST(RowReader, StopsWhereNoLaterRowCanBeTold) {
    const std::pair<std::string, std::string> cases[] = {
        {"a,a\n1,2\n", "the header: a is given twice"},
        {"a,\n1,2\n", "the header: column 2 has no name"},
        {"a,b\n1,2\nx\"y,2\n", "row 2: a quote inside a cell is not doubled"},
        {"a,b\n1,\"2\n", "row 1: a quote that is never closed"},
        {"a,b\n1,\"" + std::string(3 * RowReader::kMaxRowBytes, '\n'), "row 1: longer than"}};
    for (const auto& [bytes, message] : cases) {
        try {
            rowsOf(RowFormat::kCsv, bytes, 65536);
            ADD_FAILURE() << message;
        } catch (const TextError& error) {
            EXPECT_THAT(error.what(), HasSubstr(message));
        }
    }
}

TEST(OutputPattern, PutsValuesInSafely) {
    Row row;
    row.number = 12;
    row.id = "../a:b";
    row.settings = {{"text", "Stra\u00DFe\n*"}, {"effects[0].size", 4}, {"lang", ""}};
    const std::pair<const char*, const char*> cases[] = {
        {"out/{id}.png", "out/_._a_b.png"},
        {"{row}/{text}-{effects[0].size}.webp", "12/Stra\u00DFe__-4.webp"},
        {"{{{lang}}}.png", "{_}.png"}};
    for (const auto& [pattern, name] : cases) EXPECT_EQ(OutputPattern(pattern).nameOf(row), name);
    EXPECT_THROW(OutputPattern("{size}.png").nameOf(row), StyleError);
    for (const char* wrong : {"{id.png", "id}.png", "{}.png", "\xFF{id}"}) {
        EXPECT_THROW(OutputPattern{wrong}, Error) << wrong;
    }
    // Long ones stay apart, and whole characters.
    const std::string many(200, 'a');
    EXPECT_LT(safeFileName(many).size(), 140u);
    EXPECT_NE(safeFileName(many + "b"), safeFileName(many + "c"));
    std::string euros;
    for (int i = 0; i < 100; i++) euros += "x\u20AC";
    EXPECT_NO_THROW(OutputPattern(safeFileName(euros)));
}

TEST(OutputNames, TellsNamesOfOneFile) {
    OutputNames names;
    EXPECT_EQ(names.add("out/a.png", 1), std::nullopt);
    EXPECT_EQ(names.add("out/b.png", 2), std::nullopt);
    EXPECT_EQ(names.add("./out//a.png", 3), 1u);
}

}  // namespace
}  // namespace gxtext

// What only a look at the bytes shows; that other programs read the files is tested with the built program.
#include <gtest/gtest.h>

#include "report/csv_writer.h"
#include "report/html_writer.h"
#include "report/json_writer.h"
#include "report/raw_tables.h"
#include "report/text_writer.h"
#include "report/viewed_table.h"
#include "tests/support/activity_maker.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

class TextOutput final : public Output {
 public:
  std::string text;

 protected:
  Status write(std::string_view piece) override {
    text.append(piece);
    return {};
  }
};

/// The users and addresses of some sessions.
std::shared_ptr<const Table> people(ActivityMaker& maker) {
  const Activity activity = maker.activity();
  auto table = sessionsTable(activity, allRows(activity.sessions.size()));
  TableView view{allRows(table->rowCount()),
                 {*columnNamed(*table, "user"), *columnNamed(*table, "downloads"), *columnNamed(*table, "address")}};
  return std::make_shared<ViewedTable>(std::move(table), std::move(view), 0);
}

std::string textOf(const std::shared_ptr<const Table>& table, const TextOptions& options) {
  TextOutput output;
  Report report;
  report.parts.push_back({"", {}, table, PartForm::Rows, ""});
  EXPECT_TRUE(writeText(report, options, output).isOk() && output.finish().isOk());
  return output.text;
}

TEST(TextWriter, ColumnsAreAlignedAndCutToTheTerminal) {
  ActivityMaker maker;
  maker.session("alice", "10.0.0.5")
      .session("\xE6\xBC\xA2\xE5\xAD\x97", "a\x1B[31m")
      .session("a very long name indeed", "b");
  const auto table = people(maker);
  EXPECT_EQ(textOf(table, {}),
            "User                     Downloads  Address\n"
            "alice                            0  10.0.0.5\n"
            "\xE6\xBC\xA2\xE5\xAD\x97                             0  a\xEF\xBF\xBD[31m\n"
            "a very long name indeed          0  b\n");
  EXPECT_EQ(textOf(table, {34, false}),
            "User           Downloads  Address\n"
            "alice                  0  10.0.0.5\n"
            "\xE6\xBC\xA2\xE5\xAD\x97                   0  a\xEF\xBF\xBD[31m\n"
            "a very long \xE2\x80\xA6          0  b\n");
  for (const std::size_t width : {1u, 5u, 20u}) {
    const std::string text = textOf(table, {width, false});
    for (std::size_t begin = 0; begin < text.size(); begin = text.find('\n', begin) + 1)
      EXPECT_LE(displayWidth(std::string_view(text).substr(begin, text.find('\n', begin) - begin)), width);
  }
  EXPECT_TRUE(textOf(table, {0, true}).starts_with("\x1B[1mUser"));
}

TEST(CsvWriter, FormulasAndQuotes) {
  ActivityMaker maker;
  for (const std::string_view user : {"=1+1", "+1", "-1", "@a", "\tb", "\rc", "a=b", "say \"hi\", you", "two\nlines"})
    maker.session(user, "");
  TextOutput safe;
  TextOutput raw;
  EXPECT_TRUE(writeCsv(*people(maker), {}, safe).isOk() && safe.finish().isOk());
  EXPECT_TRUE(writeCsv(*people(maker), {true}, raw).isOk() && raw.finish().isOk());
  EXPECT_EQ(safe.text,
            "user,downloads,address\r\n'=1+1,0,\r\n'+1,0,\r\n'-1,0,\r\n'@a,0,\r\n'\tb,0,\r\n\"'\rc\",0,\r\na=b,0,\r\n"
            "\"say \"\"hi\"\", you\",0,\r\n\"two\nlines\",0,\r\n");
  EXPECT_TRUE(raw.text.starts_with("user,downloads,address\r\n=1+1,0,\r\n+1,0,\r\n"));
}

TEST(JsonWriter, ControlsAreEscapedAndNothingIsNull) {
  std::string text;
  appendJsonText(text, "a\"b\\c\n\r\t\x01\x7F\xC3\xA5/");
  EXPECT_EQ(text, "\"a\\\"b\\\\c\\n\\r\\t\\u0001\\u007f\xC3\xA5/\"");
  ActivityMaker maker;
  maker.session("", "x");
  TextOutput output;
  EXPECT_TRUE(writeJsonLines(*people(maker), output).isOk() && output.finish().isOk());
  EXPECT_EQ(output.text, "{\"user\":null,\"downloads\":0,\"address\":\"x\"}\n");
}

TEST(Output, AFileIsThereWholeOrNotAtAll) {
  const TempFolder folder;
  folder.write("a.csv", "old");
  {
    auto output = openOutput(systemFiles(), folder.path() / "a.csv");
    ASSERT_TRUE(output.isOk());
    output.value()->record() = std::string(1'000'000, 'x');
    EXPECT_TRUE(output.value()->endRecord().isOk());
  }
  EXPECT_EQ(folder.read("a.csv"), "old");
  std::filesystem::create_symlink("a.csv", folder.path() / "link");
  std::filesystem::permissions(folder.path() / "a.csv",
                               std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  auto output = openOutput(systemFiles(), folder.path() / "link");
  ASSERT_TRUE(output.isOk());
  output.value()->record() = "new";
  EXPECT_TRUE(output.value()->finish().isOk());
  EXPECT_EQ(folder.read("a.csv"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "link"));
  EXPECT_EQ(std::filesystem::status(folder.path() / "a.csv").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
}

}  // namespace
}  // namespace quorvel::test

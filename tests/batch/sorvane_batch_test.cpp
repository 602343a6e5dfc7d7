// The console program as a user runs it.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "batch/program.h"
#include "support/engines.h"

using namespace std::string_literals;
using nlohmann::json;
using words = std::vector<std::string>;

namespace {

constexpr const char* not_executed = "sorvane-batch: the text after the last ';' was not executed\n";
constexpr const char* rolled_back =
    "sorvane-batch: autocommit is off: changes that no COMMIT ended are rolled back now\n";

program_run batch(const words& arguments) { return run_program(SORVANE_BATCH_PATH, arguments); }

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::vector<json> objects_of(const program_run& run) {
  std::vector<json> objects;
  for (const std::string& line : lines_of(run.out)) objects.push_back(json::parse(line));
  return objects;
}

words fields_of(const json& object) {
  words names;
  for (const auto& each : object.items()) names.push_back(each.key());
  return names;
}

class sorvane_batch : public testing::Test {
 protected:
  static program_run on_sqlite(words arguments) {
    arguments.insert(arguments.begin(), {"--dsn", "sqlite"});
    return batch(arguments);
  }
  // Rows that a query gives, or -1.
  static std::int64_t rows(const std::string& query, words options = {}) {
    options.insert(options.end(), {"--json", "-e", query + ";"});
    const program_run run = on_sqlite(std::move(options));
    EXPECT_EQ(run.status, 0) << run.out << run.err;
    return run.status == 0 ? objects_of(run).at(0).at("rows").get<std::int64_t>() : -1;
  }

  const scoped_environment locale{"LC_ALL", "C.UTF-8"};
  const scoped_environment password{"SORVANE_PWD", ""};
  const temporary_folder folder;
};

TEST_F(sorvane_batch, refuses_what_it_does_not_understand) {
  const std::vector<words> cases{
      {},
      {"--dsn", "sqlite"},
      {"-e", "select 1;"},
      {"--dsn", "sqlite", "-e", "select 1;", "file.sql"},
      {"--dsn", "sqlite", "-e", "select 1;", "--rowset", "0"},
      {"--dsn", "sqlite", "-e", "select 1;", "--rowset", "1001"},
      {"--dsn", "sqlite", "-e", "select 1;", "--rowset", "ten"},
      {"--dsn", "sqlite", "-e", "select 1;", "--rowset", "5", "--no-block-fetch"},
      {"--dsn", "sqlite", "-e", "select 1;", "--isolation", "1"},
      {"--dsn", "sqlite", "-e", "select 1;", "--pwd", "secret"},
      {"--dsn", "sqlite", "-e", "select 1;", "--check", "--speed-test"},
      {"--dsn", "sqlite", "-e", "select 1;", "--check", "--param", "1"},
      {"--dsn", "sqlite", "-e", "select 1;", "--target", "100"},
      {"--dsn", "sqlite", "-e", "select 1;", "--speed-test", "--target", "0"},
  };
  for (const words& each : cases) {
    const program_run run = batch(each);
    EXPECT_EQ(run.status, 2) << testing::PrintToString(each);
    EXPECT_EQ(run.out, "") << testing::PrintToString(each);
    EXPECT_NE(run.err, "") << testing::PrintToString(each);
  }
  const program_run help = batch({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("SORVANE_PWD"), std::string::npos);
}

TEST_F(sorvane_batch, says_why_it_cannot_begin) {
  const std::vector<std::pair<words, std::string>> cases{
      {{"--dsn", "sqlite", folder.file("missing.sql")},
       "sorvane-batch: " + folder.file("missing.sql") + " can not be read: No such file or directory\n"},
      {{"--dsn", "sqlite", folder.file("")},
       "sorvane-batch: " + folder.file("") + " can not be read: Is a directory\n"},
      {{"--dsn", "sqlite", "-e", "select 1"}, "sorvane-batch: no statement: a statement ends with ';'\n"},
      {{"--dsn", "nowhere", "-e", "select 1;"}, "Error: Invalid Data Scource, User ID  or Password!\n"},
  };
  for (const auto& [arguments, said] : cases) {
    const program_run run = batch(arguments);
    EXPECT_EQ(run.status, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.substr(0, said.size()), said);
  }
}

TEST_F(sorvane_batch, prints_a_line_of_figures_for_each_statement) {
  const program_run run =
      on_sqlite({"-e", "create table t (n); insert into t values (1), (2);\n select n from t; selec; select 1"});
  EXPECT_EQ(run.status, 1);
  const auto lines = lines_of(run.out);
  ASSERT_EQ(lines.size(), 5U);
  const std::vector<words> expected{
      {"1", "other", "0", "ok"}, {"2", "other", "2", "ok"}, {"3", "query", "2", "ok"}, {"4", "other", "0", "error"}};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    std::istringstream in(lines[i + 1]);
    std::string number, kind, prepare, execute, fetch, affected, rate, outcome, more;
    in >> number >> kind >> prepare >> execute >> fetch >> affected >> rate >> outcome;
    EXPECT_EQ((words{number, kind, affected, outcome}), expected[i]) << lines[i + 1];
    EXPECT_FALSE(in >> more) << more;
    for (const std::string& seconds : {prepare, execute, fetch})
      EXPECT_EQ(seconds.size() - seconds.find('.'), 7U) << "six decimals: " << seconds;
  }
  EXPECT_NE(run.err.find("syntax error"), std::string::npos) << run.err;
  EXPECT_NE(run.err.find(not_executed), std::string::npos) << run.err;
  EXPECT_NE(run.err.find(rolled_back), std::string::npos) << run.err;
}

TEST_F(sorvane_batch, prints_json_with_exactly_these_fields) {
  const program_run run = on_sqlite({"--json", "-e", "select 'ü'; selec ';call p; exe400 x; select ?;"});
  EXPECT_EQ(run.status, 1);
  const auto objects = objects_of(run);
  ASSERT_EQ(objects.size(), 5U);
  const words plain{"class", "execute_s", "fetch_s", "number", "outcome", "prepare_s", "rows", "rows_per_s", "text"};
  words failed = plain;
  failed.insert(failed.begin() + 1, "diagnostic");
  const std::vector<words> expected{{"query", "select 'ü'", "ok"},
                                    {"other", " selec '", "error"},
                                    {"call", "call p", "error"},
                                    {"host", " exe400 x", "error"},
                                    {"query", " select ?", "cancelled"}};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const json& object = objects[i];
    EXPECT_EQ(object.at("number"), i + 1);
    EXPECT_EQ((words{object.at("class"), object.at("text"), object.at("outcome")}), expected[i]);
    EXPECT_EQ(fields_of(object), expected[i][2] == "error" ? failed : plain);
    for (const char* figure : {"prepare_s", "execute_s", "fetch_s", "rows_per_s"})
      EXPECT_GE(object.at(figure).get<double>(), 0);
    if (expected[i][2] != "error") continue;
    EXPECT_EQ(fields_of(object.at("diagnostic")), (words{"message", "native", "state"}));
    EXPECT_TRUE(object.at("diagnostic").at("native").is_number_integer());
    EXPECT_NE(object.at("diagnostic").at("message"), "");
  }
  EXPECT_GT(objects[0].at("prepare_s").get<double>(), 0);
  EXPECT_EQ(objects[1].at("fetch_s"), 0) << "a phase that was not reached";
  EXPECT_EQ(objects[4].at("execute_s"), 0);
  EXPECT_NE(run.err.find("1 parameter marker,"), std::string::npos) << run.err;
  EXPECT_EQ(run.out.rfind("{\"number\":1,\"class\":\"query\",\"text\":", 0), 0U);
}

TEST_F(sorvane_batch, fetches_the_first_block_or_all_rows) {
  const std::string many =
      "with recursive r(n) as (select 1 union all select n + 1 from r where n < 1200) select n from r";
  EXPECT_EQ(rows(many), 500);
  EXPECT_EQ(rows(many, {"--rowset", "7"}), 7);
  EXPECT_EQ(rows(many, {"--rowset", "1000"}), 1000);
  EXPECT_EQ(rows(many, {"--all-rows"}), 1200);
  EXPECT_EQ(rows(many, {"--all-rows", "--rowset", "1"}), 1200);
  EXPECT_EQ(rows(many, {"--no-block-fetch"}), 1);
  EXPECT_EQ(rows(many, {"--no-block-fetch", "--all-rows"}), 1200);
  EXPECT_EQ(rows("select 1 where 1 = 0"), 0);
  EXPECT_EQ(rows("select 1 where 1 = 0", {"--no-block-fetch", "--all-rows"}), 0);
}

TEST_F(sorvane_batch, changes_last_only_when_they_are_committed) {
  ASSERT_EQ(on_sqlite({"--autocommit", "-e", "create table batch_rows (n integer);"}).status, 0);
  const program_run lost = on_sqlite({"-e", "insert into batch_rows values (1);"});
  EXPECT_EQ(lost.status, 0);
  EXPECT_EQ(lost.err, rolled_back);
  EXPECT_EQ(rows("select * from batch_rows"), 0);

  const program_run kept = on_sqlite({"--autocommit", "-e", "insert into batch_rows values (2);"});
  EXPECT_EQ(kept.status, 0);
  EXPECT_EQ(kept.err.rfind("Informational Message: Warning... Autocommit is ON.", 0), 0U) << kept.err;
  EXPECT_EQ(kept.err.find(rolled_back), std::string::npos);
  EXPECT_EQ(rows("select * from batch_rows"), 1);

  EXPECT_EQ(on_sqlite({"-e", "insert into batch_rows values (3); commit;"}).status, 0);
  EXPECT_EQ(rows("select * from batch_rows"), 2);
  EXPECT_EQ(on_sqlite({"-e", "select * from batch_rows;"}).err, "") << "a query leaves nothing to roll back";
}

TEST_F(sorvane_batch, reads_scripts_of_every_encoding) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"select 'Grüße';\r\n", "select 'Grüße'"},
      {"\xEF\xBB\xBFselect 'Grüße';", "select 'Grüße'"},
      {"select 'Gr\xFC\xDF\x65';", "select 'Grüße'"},
      {"select '" + std::string(1 << 20, 'x') + "';\n\n", "select '" + std::string(1 << 20, 'x') + "'"},
  };
  for (const auto& [content, text] : cases) {
    const program_run run = on_sqlite({"--json", folder.with("script.sql", content)});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    const auto objects = objects_of(run);
    ASSERT_EQ(objects.size(), 1U);
    EXPECT_TRUE(objects[0].at("text") == text);
    EXPECT_EQ(objects[0].at("rows"), 1);
  }
  const program_run zero = on_sqlite({"--json", folder.with("zero.sql", "select \0 1; select 2;"s)});
  EXPECT_EQ(zero.status, 1);
  EXPECT_EQ(objects_of(zero).at(0).at("text"), "select \0 1"s);
  EXPECT_EQ(objects_of(zero).at(1).at("outcome"), "ok");
  EXPECT_NE(zero.err.find("holds a zero byte"), std::string::npos);
}

TEST_F(sorvane_batch, a_script_without_a_statement_only_logs_in) {
  EXPECT_EQ(on_sqlite({"--json", folder.with("empty.sql", " \r\n")}).status, 0);
  EXPECT_EQ(batch({"--dsn", "nowhere", folder.file("empty.sql")}).status, 2);
}

TEST_F(sorvane_batch, prints_what_the_catalog_tells) {
  ASSERT_EQ(
      on_sqlite({"--autocommit", "-e",
                 "create table cat_a (k integer primary key, n varchar(9)); create table catXa (x integer); create "
                 "table cat_b (r integer references cat_a(k)); create unique index cat_i on cat_a (n);"})
          .status,
      0);
  const auto names = [](const words& options, const char* field) {
    words arguments{"--json", "--catalog"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const program_run run = on_sqlite(arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    words found;
    for (const json& object : objects_of(run)) found.push_back(object.at(field));
    return found;
  };
  EXPECT_EQ(names({"tables", "--table", "cat%"}, "TABLE_NAME"), (words{"cat_a", "catXa", "cat_b"}));
  EXPECT_EQ(names({"columns", "--table", "cat_a"}, "COLUMN_NAME"), (words{"k", "n"})) << "not of catXa";
  EXPECT_EQ(names({"columns", "--table", "cat%"}, "COLUMN_NAME"), words{});
  EXPECT_EQ(names({"keys", "--table", "cat_a"}, "TYPE"), (words{"PK", "IN"}));
  EXPECT_EQ(names({"keys", "--table", "cat_b"}, "OTHER_TABLE_NAME"), words{"cat_a"});
  EXPECT_EQ(names({"indexes", "--table", "cat_a"}, "UNIQUE"), (words{"Y", "Y"})) << "the key's own and the other";

  const program_run plain = on_sqlite({"--catalog", "columns", "--table", "cat_a"});
  EXPECT_EQ(lines_of(plain.out).at(0), "ORDINAL\tCOLUMN_NAME\tTYPE_NAME\tLENGTH\tSCALE\tPRECISION\tNULLABLE\tREMARKS");
  EXPECT_EQ(lines_of(plain.out).at(2).substr(0, 15), "2\tn\tvarchar(9)\t");
  EXPECT_EQ(on_sqlite({"--catalog", "keys", "--table", "none"}).err, "sorvane-batch: nothing was found\n");
  for (const words& wrong : {words{"--catalog", "columns"},
                             {"--catalog", "views"},
                             {"--library", "L", "-e", "select 1;"},
                             {"--catalog", "tables", "-e", "select 1;"}})
    EXPECT_EQ(on_sqlite(wrong).status, 2) << testing::PrintToString(wrong);
}

class sorvane_batch_server : public sorvane_batch, public testing::WithParamInterface<engine> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(odbc_sandbox::instance().has_postgres())
        << "set SORVANE_TEST_PG_HOST and SORVANE_TEST_PG_PORT, or run tools/test";
  }
  static program_run on_server(const std::string& statements) {
    return batch({"--dsn", "postgres", "--uid", "sorvane", "--json", "-e", statements});
  }
};

TEST_P(sorvane_batch_server, the_password_comes_from_the_environment_in_upper_case) {
  for (const auto& [given, status] :
       {std::pair{" secret ", 0}, std::pair{"SECRET", 0}, std::pair{"wrong", 2}, std::pair{"", 2}}) {
    const scoped_environment typed("SORVANE_PWD", given);
    const program_run run = on_server("select 1;");
    EXPECT_EQ(run.status, status) << given << run.err;
    EXPECT_EQ(run.err.find("\n  SQL error. Code = ") != std::string::npos, status == 2)
        << "the driver's words: " << run.err;
    EXPECT_EQ(run.err.find("wrong"), std::string::npos) << "no password is shown";
  }
}

TEST_P(sorvane_batch_server, a_server_that_goes_away_in_the_middle_fails_the_rest) {
  const scoped_environment typed("SORVANE_PWD", "secret");
  const program_run run = on_server(
      "select 1; select pg_terminate_backend(pg_backend_pid()); select 2; create table batch_gone (n integer);");
  EXPECT_EQ(run.status, 1);
  const auto objects = objects_of(run);
  ASSERT_EQ(objects.size(), 4U);
  EXPECT_EQ(objects[0].at("outcome"), "ok");
  for (std::size_t i = 1; i < 4; ++i) {
    EXPECT_EQ(objects[i].at("outcome"), "error") << objects[i];
    EXPECT_TRUE(objects[i].contains("diagnostic")) << objects[i];
  }
}

TEST_P(sorvane_batch_server, typed_markers_take_values_and_calls_return_theirs) {
  const scoped_environment typed("SORVANE_PWD", "secret");
  const program_run run = batch({"--dsn", "postgres", "--uid", "sorvane", "--json", "--param", "41", "--param", "Grüße",
                                 "--param", "-1", "--param", "2001-05-17", "-e",
                                 "create procedure batch_bump(inout n integer, inout word varchar) language sql as "
                                 "$$ select n + 1, word || '!' $$;"
                                 "create table batch_marks (n integer, day date);"
                                 "call batch_bump(?, ?);"
                                 "insert into batch_marks values (?, ?);"
                                 "select * from batch_marks where n = -1 and day = '2001-05-17';"});
  const auto objects = objects_of(run);
  ASSERT_EQ(objects.size(), 5U) << run.err;
  EXPECT_EQ(objects[2].at("values"), json::array({42, "Grüße!"})) << run.err;
  EXPECT_EQ(objects[4].at("rows"), 1);
  EXPECT_EQ(run.status, 0);
}

INSTANTIATE_TEST_SUITE_P(engines, sorvane_batch_server, testing::Values(postgres()),
                         [](const auto& each) { return each.param.name; });

}  // namespace

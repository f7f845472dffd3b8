#include "tests/harness/log_statements.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

namespace harness {

namespace {

// What stands between two of ; { } outside comments and literals.
struct Statement {
  std::string file;
  uint32_t first_line = 0;  // 0 before anything stands in it
  uint32_t last_line = 0;
  std::vector<std::string> names;  // identifiers and keywords, in order
  std::vector<std::string> texts;  // string literals, neighbours put together
  std::string constant;            // the one that it defines
};

class Reader {
 public:
  Reader(std::string file, std::string source)
      : file_(std::move(file)), source_(std::move(source)) {
    statement_.file = file_;
  }

  std::vector<Statement> statements() {
    while (at_ < source_.size()) read_one();
    end_statement();
    return std::move(statements_);
  }

 private:
  bool stands_here(const char* text) const {
    return source_.compare(at_, std::char_traits<char>::length(text), text) == 0;
  }

  void step() {
    if (source_[at_] == '\n') ++line_;
    ++at_;
  }

  // Up to the text, and beyond it.
  void skip_behind(const char* text) {
    while (at_ < source_.size() && !stands_here(text)) step();
    for (const char* c = text; *c != '\0' && at_ < source_.size(); ++c) step();
  }

  // A directive ends with its line, unless that ends with a backslash.
  void skip_directive() {
    while (at_ < source_.size() && source_[at_] != '\n') {
      if (source_[at_] == '\\') step();
      step();
    }
  }

  std::string read_literal(char quote) {
    std::string text;
    for (step(); at_ < source_.size() && source_[at_] != quote; step()) {
      if (source_[at_] == '\\') {
        text += source_[at_];
        step();
      }
      text += source_[at_];
    }
    step();
    return text;
  }

  // A number's digits may be set apart.
  std::string read_name() {
    std::string name;
    for (; at_ < source_.size(); step()) {
      const bool sets_apart =
          source_[at_] == '\'' && std::isdigit(static_cast<unsigned char>(name[0]));
      if (!is_of_name(source_[at_]) && !sets_apart) break;
      name += source_[at_];
    }
    return name;
  }

  static bool is_of_name(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
  }

  void read_one() {
    const char c = source_[at_];
    if (stands_here("//")) {
      skip_behind("\n");
    } else if (stands_here("/*")) {
      skip_behind("*/");
    } else if (c == '#') {
      skip_directive();
    } else if (std::isspace(static_cast<unsigned char>(c)) != 0) {
      step();
    } else if (c == ';' || c == '{' || c == '}') {
      end_statement();
      step();
    } else {
      read_token(c);
    }
  }

  void read_token(char c) {
    if (statement_.first_line == 0) statement_.first_line = line_;
    const bool follows_a_text = std::exchange(text_is_last_, c == '"');
    if (c == '"') {
      const std::string text = read_literal(c);
      if (follows_a_text) {
        statement_.texts.back() += text;
      } else {
        statement_.texts.push_back(text);
      }
    } else if (c == '\'') {
      read_literal(c);
    } else if (is_of_name(c)) {
      statement_.names.push_back(read_name());
      if (angles_ == 0) name_outside_angles_ = statement_.names.back();
    } else {
      if (stands_here("[]")) statement_.constant = name_outside_angles_;
      if (c == '<') ++angles_;
      if (c == '>' && angles_ > 0) --angles_;
      step();
    }
    statement_.last_line = line_;
  }

  void end_statement() {
    if (statement_.first_line != 0) statements_.push_back(std::move(statement_));
    statement_ = {};
    statement_.file = file_;
    text_is_last_ = false;
    angles_ = 0;
    name_outside_angles_.clear();
  }

  std::string file_;
  std::string source_;
  std::size_t at_ = 0;
  uint32_t line_ = 1;
  Statement statement_;
  bool text_is_last_ = false;
  int angles_ = 0;  // of template arguments that are open
  std::string name_outside_angles_;
  std::vector<Statement> statements_;
};

std::vector<Statement> statements_of_the_library() {
  std::vector<Statement> all;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(KORVEL_LIBRARY_SOURCES)) {
    const std::filesystem::path& path = entry.path();
    if (path.extension() != ".h" && path.extension() != ".cpp") continue;
    std::ifstream file(path);
    std::stringstream source;
    source << file.rdbuf();
    const std::vector<Statement> found = Reader(path.filename(), source.str()).statements();
    all.insert(all.end(), found.begin(), found.end());
  }
  return all;
}

// Those that send a message of each format.
class LogStatements {
 public:
  LogStatements() : statements_(statements_of_the_library()) {
    std::multimap<std::string, std::string> formats_of_constant;
    for (const Statement& statement : statements_) {
      for (const std::string& text : statement.texts) {
        if (text.empty()) continue;  // no message
        if (statement.constant.empty()) {
          by_format_.emplace(text, &statement);
        } else {
          formats_of_constant.emplace(statement.constant, text);
        }
      }
    }
    for (const Statement& statement : statements_) {
      if (!statement.constant.empty()) continue;
      for (const std::string& name : statement.names) {
        const auto [first, last] = formats_of_constant.equal_range(name);
        for (auto it = first; it != last; ++it) by_format_.emplace(it->second, &statement);
      }
    }
  }

  testing::AssertionResult is_sent_from(uint32_t line, const std::string& format) const {
    const auto [first, last] = by_format_.equal_range(format);
    if (first == last) {
      return testing::AssertionFailure()
             << "no statement in " << KORVEL_LIBRARY_SOURCES << " logs \"" << format << "\"";
    }
    testing::AssertionResult nowhere = testing::AssertionFailure();
    nowhere << "\"" << format << "\" names line " << line << ", but is logged in";
    for (auto it = first; it != last; ++it) {
      const Statement& statement = *it->second;
      if (statement.first_line <= line && line <= statement.last_line) {
        return testing::AssertionSuccess();
      }
      nowhere << ' ' << statement.file << ':' << statement.first_line << '-' << statement.last_line;
    }
    return nowhere << "; or the library is built from other sources than those in "
                   << KORVEL_LIBRARY_SOURCES;
  }

 private:
  std::vector<Statement> statements_;
  std::multimap<std::string, const Statement*> by_format_;
};

}  // namespace

testing::AssertionResult is_sent_from(uint32_t line, const std::string& format) {
  static const LogStatements statements;
  // Tests send the same messages over and over.
  static std::set<std::pair<uint32_t, std::string>> known;
  if (known.count({line, format}) != 0) return testing::AssertionSuccess();
  testing::AssertionResult result = statements.is_sent_from(line, format);
  if (result) known.emplace(line, format);
  return result;
}

}  // namespace harness

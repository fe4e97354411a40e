#include "tests/docs/verb_calls.h"

#include <cctype>
#include <regex>
#include <sstream>

#include "tests/docs/document_files.h"

namespace rasterkit::test {
namespace {

/// A definition that begins in the first column of a file: a function, a class, a table.
struct Definition {
  std::string file, name;
  /// Names that it uses, and those of them that it calls as free functions.
  std::set<std::string> uses, calls;
  /// Set for a function that adds a verb.
  std::string verb;
};

std::string WithoutComments(const std::string& text) {
  static const std::regex kComment("//[^\n]*");
  return std::regex_replace(text, kComment, "");
}

std::string WithoutTexts(const std::string& text) {
  static const std::regex kText("\"(\\\\.|[^\"\\\\\n])*\"|'(\\\\.|[^'\\\\\n])'");
  return std::regex_replace(text, kText, "\"\"");
}

std::string NameOf(const std::string& chunk) {
  static const std::regex kClass("^(?:class|struct|enum class|enum) (?:RASTERKIT_EXPORT )?(\\w+)");
  static const std::regex kFunction("([A-Za-z_]\\w*)\\(");
  static const std::regex kTable("(\\w+)(?:\\[\\])? = ");
  std::smatch match;
  const std::string head = chunk.substr(0, std::min(chunk.find('{'), chunk.size()));
  if (std::regex_search(chunk, match, kClass)) return match[1];
  if (std::regex_search(head, match, kTable)) return match[1];
  if (std::regex_search(head, match, kFunction)) return match[1];
  return {};
}

Definition Read(const std::string& file, const std::string& chunk) {
  static const std::regex kVerb("(?:AddVerb\\(|\\(\\s*line,)\\s*\\{\"([a-z-]+)\"");
  static const std::regex kWord("(^|[^A-Za-z0-9_.>])([A-Za-z_]\\w*)|([.>])([A-Za-z_]\\w*)");
  static const std::regex kCall("(^|[^A-Za-z0-9_.>])([A-Za-z_]\\w*)\\(");
  Definition definition;
  definition.file = file;
  std::smatch match;
  if (std::regex_search(chunk, match, kVerb)) definition.verb = match[1];
  const std::string code = WithoutTexts(chunk);
  definition.name = NameOf(code);
  for (std::sregex_iterator it(code.begin(), code.end(), kWord), end; it != end; ++it) {
    definition.uses.insert((*it)[2].matched ? (*it)[2] : (*it)[4]);
  }
  for (std::sregex_iterator it(code.begin(), code.end(), kCall), end; it != end; ++it) {
    definition.calls.insert((*it)[2]);
  }
  return definition;
}

std::vector<Definition> DefinitionsOf(const std::string& file, const std::string& text) {
  std::vector<Definition> definitions;
  std::istringstream lines(WithoutComments(text));
  std::string chunk;
  for (std::string line; std::getline(lines, line);) {
    const bool isOutside = chunk.empty();
    const bool isSkipped = line.empty() || line.starts_with('#') || line.starts_with("namespace") ||
                           line.starts_with("using") || line.starts_with('}');
    if (isOutside && isSkipped) continue;
    chunk += line + '\n';
    const bool isEnd =
        line.starts_with('}') || (line[0] != ' ' && (line.ends_with('}') || line.ends_with(';')));
    // A head that goes on over several lines ends in the first column or with its only line.
    const bool isShort = line.ends_with(';') && chunk.find('{') == std::string::npos;
    if (!isEnd && !isShort) continue;
    definitions.push_back(Read(file, chunk));
    chunk.clear();
  }
  return definitions;
}

std::set<std::string> WordsOf(const std::string& text) {
  std::set<std::string> words;
  std::string word;
  for (const char c : text + ' ') {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_') {
      word += c;
    } else if (!word.empty()) {
      words.insert(std::move(word));
      word.clear();
    }
  }
  return words;
}

class CallGraph {
 public:
  explicit CallGraph(const ToolSources& sources) : sources_(sources) {
    for (const auto& [file, text] : sources) {
      for (Definition& definition : DefinitionsOf(file, text)) {
        if (definition.name.empty()) continue;
        byName_[definition.name].push_back(std::move(definition));
      }
      static const std::regex kInclude("#include \"(tool/[^\"]+)\"");
      for (std::sregex_iterator it(text.begin(), text.end(), kInclude), end; it != end; ++it) {
        includes_[file].insert((*it)[1]);
      }
    }
  }

  std::vector<const Definition*> Verbs() const {
    std::vector<const Definition*> verbs;
    for (const auto& [name, definitions] : byName_) {
      for (const Definition& definition : definitions) {
        const bool isVerb =
            !definition.verb.empty() && definition.file.starts_with("tool/verbs/verb_");
        if (isVerb) verbs.push_back(&definition);
      }
    }
    return verbs;
  }

  /// All definitions that one leads to, itself included.
  std::set<const Definition*> Reach(const Definition& from) const {
    std::set<const Definition*> reached;
    std::vector<const Definition*> waiting = {&from};
    while (!waiting.empty()) {
      const Definition& next = *waiting.back();
      waiting.pop_back();
      if (!reached.insert(&next).second) continue;
      for (const std::string& name : next.uses) {
        for (const Definition* used : Find(next.file, name)) waiting.push_back(used);
      }
    }
    return reached;
  }

  /// Definitions of a name as seen from a file: its own, else those of the headers it includes.
  std::vector<const Definition*> Find(const std::string& file, const std::string& name) const {
    const auto named = byName_.find(name);
    if (named == byName_.end()) return {};
    std::vector<const Definition*> own, others;
    const std::set<std::string> headers = Headers(file);
    for (const Definition& definition : named->second) {
      const std::string stem = definition.file.substr(0, definition.file.rfind('.'));
      if (stem == file.substr(0, file.rfind('.'))) own.push_back(&definition);
      if (headers.contains(stem + ".h") && Mentions(stem + ".h", name))
        others.push_back(&definition);
    }
    return own.empty() ? others : own;
  }

 private:
  bool Mentions(const std::string& header, const std::string& name) const {
    const auto text = sources_.find(header);
    if (text == sources_.end()) return false;
    const auto [words, isNew] = words_.emplace(header, std::set<std::string>());
    if (isNew) words->second = WordsOf(text->second);
    return words->second.contains(name);
  }

  const std::set<std::string>& Headers(const std::string& file) const {
    const auto [known, isNew] = headers_.emplace(file, std::set<std::string>());
    if (!isNew) return known->second;
    std::vector<std::string> waiting = {file};
    while (!waiting.empty()) {
      const std::string next = waiting.back();
      waiting.pop_back();
      const auto found = includes_.find(next);
      if (found == includes_.end()) continue;
      for (const std::string& header : found->second) {
        if (known->second.insert(header).second) waiting.push_back(header);
      }
    }
    return known->second;
  }

  const ToolSources& sources_;
  std::map<std::string, std::vector<Definition>> byName_;
  std::map<std::string, std::set<std::string>> includes_;
  mutable std::map<std::string, std::set<std::string>> headers_, words_;
};

}  // namespace

ToolSources ReadToolSources() {
  ToolSources sources;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(SourceFolder() / "tool")) {
    const auto extension = entry.path().extension();
    if (extension != ".h" && extension != ".cpp") continue;
    const auto name = std::filesystem::relative(entry.path(), SourceFolder());
    sources[name.generic_string()] = ReadDocument(name);
  }
  return sources;
}

std::map<std::string, std::set<std::string>> VerbsByName(const ToolSources& sources,
                                                         const LibraryNames& names) {
  std::map<std::string, std::set<std::string>> verbs;
  for (const std::string& name : names.routines) verbs[name];
  for (const std::string& name : names.classes) verbs[name];
  const CallGraph graph(sources);
  for (const Definition* verb : graph.Verbs()) {
    for (const Definition* definition : graph.Reach(*verb)) {
      for (const std::string& name : definition->calls) {
        // A function of the tool may bear the name of one of the library.
        const bool isOurs = !graph.Find(definition->file, name).empty();
        if (names.routines.contains(name) && !isOurs) verbs[name].insert(verb->verb);
      }
      for (const std::string& name : definition->uses) {
        if (names.classes.contains(name)) verbs[name].insert(verb->verb);
      }
    }
  }
  return verbs;
}

}  // namespace rasterkit::test

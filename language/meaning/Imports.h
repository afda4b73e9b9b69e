// A model file and all that it imports, read and parsed.
//
// An import is looked for in the folder of the file that imports it, then in the folders of the search path. A file that is
// imported from several places is read once. All lie below the main file's folder or one of the search path, links followed, so that
// a model that somebody else made reads nothing else; unless the reader allows it. Files that import each other in a circle are an error.
#pragma once

#include "language/meaning/Report.h"
#include "language/syntax/Parser.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace language {

/// The files of a model, the main one first. `trees[i]` is the tree of `texts[i]`.
struct SourceFiles {
    SourceTexts texts;
    std::vector<syntax::File> trees;
    std::vector<std::uint32_t> order; ///< of the trees: each after those that it imports
    /// Words on the lines that could not be parsed: what they may have declared is not reported as unknown.
    std::unordered_set<std::string> unreadWords;
    bool unread = false; ///< a statement, or a file, could not be read
    bool parsed = true;  ///< there is a main file
};

/// Reads the model's files. `path` names the main one.
class ImportReader {
public:
    ImportReader(SourceFiles& files, Report& report, std::vector<std::string> searchPath,
                 bool anywhere, const syntax::Limits& limits)
        : files_(files), report_(report), searchPath_(std::move(searchPath)), anywhere_(anywhere),
          limits_(limits)
    {
    }

    void read(const std::string& path);
    /// The same for a text that has been read already, under the name `path`.
    void read(const std::string& path, std::string text);

private:
    struct Opened {
        std::string path;
        std::uint32_t number;
    };

    void add(const std::string& path, std::string text);
    void parseFile(std::uint32_t number);
    bool mayBeRead(const std::string& path) const;
    void followImport(const syntax::Import& import, std::uint32_t importer);
    void noteUnread(const text::SourceText& text, std::size_t line);

    SourceFiles& files_;
    Report& report_;
    std::vector<std::string> searchPath_;
    bool anywhere_;
    syntax::Limits limits_;
    std::vector<std::string> paths_;  ///< by number, in a form that is the same for the same file
    std::vector<std::uint32_t> open_; ///< from the main file to the one that is read now
};

} // namespace language

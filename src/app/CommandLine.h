// What the words of the command line ask for.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace pictorel {

struct CommandLine {
    QString text;      // the whole argument text, of which "homepage" alone means anything
    QStringList files; // absolute paths of what the words name as files, whether those are there or not
};

// A word is a file's name where there is such a file, where it is written as a path or an address ("a/b",
// "file:...") or ends as pictures' names do, and always behind "--". Any other word means nothing.
CommandLine ReadCommandLine(const QStringList& words);

// What is printed, instead of a start, for --help (-h) and --version (-v); nothing where neither is asked
// for. `walls` is asked for the lines about the decoder's walls, each with its line feed.
std::optional<QString> PrintedAnswer(const QStringList& words, const QString& version,
                                     const std::function<QString()>& walls);

} // namespace pictorel

#pragma once

#include <QString>

/// The diagnostic log: lines of UTF-8 on standard output, each written at once. Never blocks and
/// never raises a signal: what a full pipe does not take is kept, up to a bound, and written when
/// the reader catches up; whole lines beyond the bound, and all that a closed pipe refuses, are
/// dropped. Main thread.
namespace Log {

/// Makes standard output fit for logging: keeps the numbers 0 to 2 from being reused by other files
/// if the program was started without them, ignores SIGPIPE (children get it back), and opens what
/// writing needs. Called first in main().
void prepareStandardStreams();

/// Writes one line; a line break is added.
void line(const QString &text);

/// Gathers the lines of one step and writes them together, in one write, when destroyed.
class Batch {
public:
    Batch() = default;
    Batch(const Batch &) = delete;
    Batch &operator=(const Batch &) = delete;
    ~Batch();

    /// Adds one line.
    void line(const QString &text);
    /// Adds one line that is UTF-8 already.
    void line(QByteArrayView utf8);

private:
    QByteArray m_lines;
};

} // namespace Log

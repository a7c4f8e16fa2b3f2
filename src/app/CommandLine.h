#pragma once

#include "platform/RemoteAction.h"

#include <QString>
#include <QStringList>

#include <optional>

/// What the program was started with.
struct CommandLine {
    enum class Kind {
        Run,
        Help,
        Version,
        Mistake,
    };

    Kind kind = Kind::Run;
    std::optional<RemoteAction> action = {}; ///< Only to run; may be absent then.
    QString mistake = {}; ///< What is wrong; empty unless something is.

    bool operator==(const CommandLine &) const = default;

    /// arguments without the program's name. The toolkit's own options, which it will take for
    /// itself, are passed over.
    static CommandLine parse(const QStringList &arguments);

    /// How the program is called, with its actions: several lines.
    static QString usage();
};

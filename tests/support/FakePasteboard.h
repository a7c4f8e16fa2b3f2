#pragma once

#include "platform/Pasteboard.h"

/// A clipboard of one text.
class FakePasteboard final : public Pasteboard {
public:
    bool writeText(const QString &newText) override
    {
        if (!isWritable)
            return false;
        text = newText;
        return true;
    }

    QString text;
    bool isWritable = true;
};

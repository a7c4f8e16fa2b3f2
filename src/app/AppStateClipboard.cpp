#include "app/AppState.h"

#include "base/Log.h"

using namespace Qt::StringLiterals;

void AppState::uploadClipboard()
{
    Log::line(u"⚠️ Upload from Clipboard is not available in this version"_s);
}

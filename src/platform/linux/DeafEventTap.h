#pragma once

#include "platform/EventTap.h"

/// An event tap that hears nothing, for a press that no key can make.
class DeafEventTap final : public EventTap { };

#pragma once

// The whole toolkit, for pages that use most of it.
#include "duilib/container.h"
#include "duilib/control.h"
#include "duilib/diagnostics.h"
#include "duilib/dialog_builder.h"
#include "duilib/dui_string.h"
#include "duilib/geometry.h"
#include "duilib/notify_pump.h"
#include "duilib/paint_manager.h"
#include "duilib/paint_surface.h"
#include "duilib/render_engine.h"
#include "duilib/resource_manager.h"
#include "duilib/scroll_view.h"
#include "duilib/ui_culture.h"
#include "duilib/window.h"

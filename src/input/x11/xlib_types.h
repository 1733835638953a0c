#pragma once

// The structures behind Xlib's handles, so that headers need not include Xlib, whose macros take many common
// words. NOLINTBEGIN(bugprone-reserved-identifier): the names are Xlib's.
struct _XDisplay;
struct _XkbStateRec;
union _XEvent;
// NOLINTEND(bugprone-reserved-identifier)

struct xcb_connection_t;

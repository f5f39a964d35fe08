// A handle type of the window system that this library only passes on.
#pragma once

// An icon; opaque, null for none.
using HICON = struct IconHandle*;

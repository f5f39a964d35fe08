// The handle types of the window system, each opaque to this library.
#pragma once

using HICON = struct HICON__*;
using HWND = struct HWND__*;

#pragma once

//! For a window to come up, in milliseconds: the first one on a busy machine takes seconds.
constexpr int WindowTimeoutMs = 30000;

#pragma once

#include <QtGlobal>

#include <cstddef>
#include <cstdint>

/*!
    Loads the settings page with a settings file made of the \a size bytes at \a data, changes one
    setting, and loads it again. An even first byte takes what follows as the file's bytes; an odd
   one takes it as choices of the words of a file that mostly makes sense.

    Aborts the process, with a line that says why, where a field shows what it must not, a change is
    not kept, or a well-formed file loses what the page doesn't know. Returns 0. The signature is
    libFuzzer's.

    Needs an application object, for which fuzzSettingsInitialize() provides.
*/
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

/*!
    Makes the application object, without a display, and a configuration folder in memory that goes
    with the process. To be called once, before the first input.
*/
void fuzzSettingsInitialize();

/*!
    Keeps Qt silent about what it can't decode: an input is full of it. Returns the handler that
    messages went to before.
*/
QtMessageHandler ignoreMessages();

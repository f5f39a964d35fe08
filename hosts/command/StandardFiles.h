// StandardFiles: standard input, output and error of a program that may have been started without some of them.
#pragma once

// Opens those that are missing, the wrong way round, so that no other file gets their numbers and each use fails: an
// answer would else be read from a mail, or a warning land in one. To be called before any file is opened. Gives 0 if
// that could not be done.
[[nodiscard]] int OpenMissingStandardFiles();

// Whether standard input can be read and is no terminal: a file, a pipe, /dev/null.
bool HasPipedInput();

// Throw hostkit::Failure for one that is closed.
void CheckStandardInput();
void CheckStandardOutput();

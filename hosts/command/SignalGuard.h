// SignalGuard: what the program does when a signal ends it. Called once, by main.
#pragma once

// Installs a handler for the signals that end a program from outside or at a limit: half written files and temporary
// folders go, then the signal ends the program as it would have. One that is ignored (nohup) stays so.
void InstallSignalGuard();

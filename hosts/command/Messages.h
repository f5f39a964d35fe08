// Messages: many messages, one after the other. One thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

// Calls take with each file. What it throws for one, memory that ends there too, is told with the file's name and ends
// that one alone. Gives the exit status: 0, or kExitFailed. Throws CFailure if what was put out did not get there.
int ForEachMessage(const std::vector<std::string>& files, const std::function<void(const std::string&)>& take);

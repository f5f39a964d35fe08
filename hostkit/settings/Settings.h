// Settings: what a user keeps in one file for every program that sends their mail. Any thread; only GLib's look at the
// environment, at the first call, must not run beside a setenv.
//
// The file is UTF-8, in GLib's key file form (desktop entries have the same): groups in brackets, "key = value" lines,
// comments behind # at a line's beginning; in a value \n is a line end, \s a blank, \t a TAB and \\ a backslash.
//
//     [user]
//     from = 山田太郎 <yamada@example.jp>      the sender
//     own = taro@example.jp; info@example.jp   the user's other addresses
//     reply-to = yamada@example.jp             where replies go
//     signature = 山田太郎\n℡ 03-0000-0000
//
//     [send]
//     server = mail.example.jp:25              the mail server
//     sendmail = /usr/bin/msmtp                the program that takes a mail where no server is named
//     copy = ~/Maildir/.Sent                   the Maildir that keeps a copy of each mail that was sent
//     limit = 25M                              the largest message
#pragma once

#include <cstdint>
#include <filesystem>
#include <hostkit/characters/Failure.h>
#include <optional>
#include <string>
#include <vector>

namespace hostkit {

struct Settings {
    std::optional<std::string> from, replyTo;  // 'name <user@host>' or user@host: one that AddressOf takes
    std::vector<std::string> own{};            // the user's mail addresses, user@host, that of from among them
    std::optional<std::string> signature;      // many lines; a Japanese mail can carry it
    std::optional<std::string> server;         // HOST[:PORT]: one that SetServer takes
    std::optional<std::filesystem::path>
        program;  // absolute, as is the folder; whether they are there is not looked at
    std::optional<std::filesystem::path> copy;
    std::optional<std::uint64_t> limit;  // in bytes
};

// $XDG_CONFIG_HOME/mailengine/config.ini; without that variable, or where it is no absolute path, ~/.config stands in.
HOSTKIT_API std::filesystem::path SettingsFile();

// The settings of the user's own file; all empty where there is none.
HOSTKIT_API Settings ReadSettings();
// The settings in the file, which has to be there.
//
// Both throw Failure: of the kind Input for a file that cannot be read, of the kind Settings for a line that is no
// UTF-8, an unknown group or key, a key that stands there twice, and a value that could not be used; it names the file
// and the line.
HOSTKIT_API Settings ReadSettings(const std::filesystem::path& file);

}  // namespace hostkit

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include <mailengine/support/platform/files/FileSystem.h>
#include <mailengine/support/platform/files/Path.h>
#include <mailengine/support/platform/text/Unicode.h>

namespace {

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};

// What a handle stands for. A search for one path has no directory, and is over with its first entry.
struct Search {
    std::unique_ptr<DIR, CloseDirectory> directory;
    std::string mask;
};

// The bytes of the character at the front of text, which is not empty; what is no UTF-8 counts byte by byte.
std::size_t FrontCharacter(std::string_view text) {
    return platform::Utf8CharacterAt(text, 0).bytes;
}

// Whether name matches mask. A star first stands for nothing; at a mismatch the last star takes one character more.
bool Matches(std::string_view name, std::string_view mask) {
    if (mask == "*.*") return true;
    std::string_view retryName, retryMask;
    bool hasStar = false;
    while (!name.empty()) {
        if (!mask.empty() && mask[0] == '*') {
            hasStar = true;
            mask.remove_prefix(1);
            retryName = name;
            retryMask = mask;
        } else if (!mask.empty() && (mask[0] == '?' || mask[0] == name[0])) {
            name.remove_prefix(mask[0] == '?' ? FrontCharacter(name) : 1);
            mask.remove_prefix(1);
        } else if (hasStar) {
            retryName.remove_prefix(FrontCharacter(retryName));
            name = retryName;
            mask = retryMask;
        } else {
            return false;
        }
    }
    return mask.find_first_not_of('*') == std::string_view::npos;
}

std::uint32_t AttributesOf(mode_t mode) {
    return S_ISDIR(mode) ? platform::FILE_ATTRIBUTE_DIRECTORY : platform::FILE_ATTRIBUTE_NORMAL;
}

// 0: the entry went away meanwhile.
int Describe(const Search& search, const dirent& entry, platform::WIN32_FIND_DATAA& data) {
    mode_t mode = entry.d_type == DT_DIR ? S_IFDIR : S_IFREG;
    if (entry.d_type == DT_UNKNOWN) {
        struct stat status {};
        if (fstatat(dirfd(search.directory.get()), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) return 0;
        mode = status.st_mode;
    }
    data.dwFileAttributes = AttributesOf(mode);
    data.cFileName = platform::ToLibraryName(entry.d_name);
    return 1;
}

int FindNext(const Search& search, platform::WIN32_FIND_DATAA& data) {
    if (search.directory == nullptr) return 0;
    while (const dirent* const entry = readdir(search.directory.get()))
        if (Matches(entry->d_name, search.mask) && Describe(search, *entry, data)) return 1;
    return 0;
}

int FindOne(const std::string& path, std::string_view name, platform::WIN32_FIND_DATAA& data) {
    struct stat status {};
    // Behind a last slash a link would be followed.
    if (name.empty() || lstat(path.c_str(), &status) != 0) return 0;
    data.dwFileAttributes = AttributesOf(status.st_mode);
    data.cFileName = platform::ToLibraryName(name);
    return 1;
}

// The folder that a path down to its last slash names, unless that is a link; null if it cannot be opened.
DIR* OpenFolder(std::string path) {
    if (path.empty()) path.push_back('.');
    if (path.size() > 1 && path.back() == '/') path.pop_back();  // behind a last slash a link would be followed
    const int descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    DIR* const directory = fdopendir(descriptor);
    if (directory == nullptr) close(descriptor);
    return directory;
}

platform::HANDLE HandleOf(std::unique_ptr<Search> search) {
    return reinterpret_cast<platform::HANDLE>(search.release());
}

Search* SearchOf(platform::HANDLE handle) {
    return handle == platform::INVALID_HANDLE_VALUE ? nullptr : reinterpret_cast<Search*>(handle);
}

}  // namespace

platform::HANDLE platform::FindFirstFileA(const char* pattern, WIN32_FIND_DATAA& data) {
    const std::string path = ToNativePath(pattern);
    const std::size_t nameTop = path.rfind('/') + 1;  // 0 without a slash
    const std::string name = path.substr(nameTop);
    auto search = std::make_unique<Search>();
    if (name.find_first_of("*?") == std::string::npos)
        return FindOne(path, name, data) ? HandleOf(std::move(search)) : INVALID_HANDLE_VALUE;
    search->mask = name;
    search->directory.reset(OpenFolder(path.substr(0, nameTop)));
    return FindNext(*search, data) ? HandleOf(std::move(search)) : INVALID_HANDLE_VALUE;
}

int platform::FindNextFileA(HANDLE search, WIN32_FIND_DATAA& data) {
    const Search* const running = SearchOf(search);
    return running != nullptr && FindNext(*running, data);
}

int platform::FindClose(HANDLE search) {
    if (SearchOf(search) == nullptr) return 0;
    delete SearchOf(search);
    return 1;
}

int platform::DeleteFileA(const char* path) {
    const std::string native = ToNativePath(path);
    struct stat status {};
    if (lstat(native.c_str(), &status) != 0) return 0;
    if (S_ISBLK(status.st_mode) || S_ISCHR(status.st_mode)) {
        errno = EPERM;
        return 0;
    }
    return unlink(native.c_str()) == 0;
}

int platform::CreateDirectoryA(const char* path, const void* security) {
    if (security != nullptr) {
        errno = EINVAL;
        return 0;
    }
    return mkdir(ToNativePath(path).c_str(), 0777) == 0;
}

int platform::RemoveDirectoryA(const char* path) {
    return rmdir(ToNativePath(path).c_str()) == 0;
}

int platform::IsSameFile(const char* path, const char* other) {
    struct stat one {
    }, two{};
    return stat(ToNativePath(path).c_str(), &one) == 0 && stat(ToNativePath(other).c_str(), &two) == 0 &&
           one.st_dev == two.st_dev && one.st_ino == two.st_ino;
}

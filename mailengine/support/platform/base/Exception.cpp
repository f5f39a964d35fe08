#include <mailengine/support/platform/base/Exception.h>

CException::~CException() = default;
CFileException::~CFileException() = default;

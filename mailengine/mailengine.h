// mailengine.h: all that a host may use. Text is code page 932 bytes throughout, and so are paths, with backslashes;
// every length and offset counts bytes. Everything runs on the host's user-interface thread, but for the classes of
// static operations, which hold no state, and a parse with a document of its own: these may run on any thread.
// The headers below are the public ones: those that the CMake file sets of both libraries name and install.
#pragma once

#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/encoding/QuotedPrint.h>
#include <mailengine/model/Address.h>
#include <mailengine/model/MailDoc.h>
#include <mailengine/model/Recipients.h>
#include <mailengine/parser/EMailPerser.h>
#include <mailengine/parser/MailFault.h>
#include <mailengine/support/FileUtility.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/platform/base/CmdTarget.h>
#include <mailengine/support/platform/base/Document.h>
#include <mailengine/support/platform/base/Exception.h>
#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/base/PtrArray.h>
#include <mailengine/support/platform/base/Types.h>
#include <mailengine/support/platform/files/File.h>
#include <mailengine/support/platform/files/FileStatus.h>
#include <mailengine/support/platform/files/FileSystem.h>
#include <mailengine/support/platform/files/Path.h>
#include <mailengine/support/platform/net/Socket.h>
#include <mailengine/support/platform/system/System.h>
#include <mailengine/support/platform/text/Characters.h>
#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/text/StringArray.h>
#include <mailengine/support/platform/text/Unicode.h>
#include <mailengine/support/platform/windows/DataExchange.h>
#include <mailengine/support/platform/windows/Dialog.h>
#include <mailengine/support/platform/windows/FileDialog.h>
#include <mailengine/support/platform/windows/ProgressCtrl.h>
#include <mailengine/support/platform/windows/ResourceRegistry.h>
#include <mailengine/support/platform/windows/WinApp.h>
#include <mailengine/support/platform/windows/WindowSystem.h>
#include <mailengine/support/platform/windows/WindowTypes.h>
#include <mailengine/support/platform/windows/Wnd.h>
#include <mailengine/transport/MailSendRecv.h>
#include <mailengine/transport/Smtp.h>
#include <mailengine/transport/SmtpStream.h>
#include <mailengine/writer/EMailWriter.h>
#include <mailengine/writer/FileOutStream.h>
#include <mailengine/writer/OutputStream.h>

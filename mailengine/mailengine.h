// mailengine.h: all that a host may use. Text is code page 932 bytes throughout, and so are paths, with backslashes;
// every length and offset counts bytes. Everything runs on the host's user-interface thread.
// The headers below are the public ones, and those that are installed: one that is not named here is internal.
#pragma once

#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/encoding/QuotedPrint.h>
#include <mailengine/model/Address.h>
#include <mailengine/model/MailDoc.h>
#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/FileUtility.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/platform/Characters.h>
#include <mailengine/support/platform/CmdTarget.h>
#include <mailengine/support/platform/DataExchange.h>
#include <mailengine/support/platform/Dialog.h>
#include <mailengine/support/platform/Document.h>
#include <mailengine/support/platform/Exception.h>
#include <mailengine/support/platform/Export.h>
#include <mailengine/support/platform/File.h>
#include <mailengine/support/platform/FileDialog.h>
#include <mailengine/support/platform/FileStatus.h>
#include <mailengine/support/platform/FileSystem.h>
#include <mailengine/support/platform/Path.h>
#include <mailengine/support/platform/ProgressCtrl.h>
#include <mailengine/support/platform/PtrArray.h>
#include <mailengine/support/platform/ResourceRegistry.h>
#include <mailengine/support/platform/Socket.h>
#include <mailengine/support/platform/String.h>
#include <mailengine/support/platform/StringArray.h>
#include <mailengine/support/platform/System.h>
#include <mailengine/support/platform/Types.h>
#include <mailengine/support/platform/WinApp.h>
#include <mailengine/support/platform/WindowSystem.h>
#include <mailengine/support/platform/WindowTypes.h>
#include <mailengine/support/platform/Wnd.h>
#include <mailengine/transport/MailSendRecv.h>
#include <mailengine/transport/Smtp.h>
#include <mailengine/transport/SmtpStream.h>
#include <mailengine/writer/EMailWriter.h>
#include <mailengine/writer/FileOutStream.h>
#include <mailengine/writer/OutputStream.h>

// hostkit.h: the kit for hosts. Mail in UTF-8 std::string and std::filesystem::path, without the engine's code page.
#pragma once

#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/Export.h>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/files/DescriptorStream.h>
#include <hostkit/files/FileName.h>
#include <hostkit/files/InputFile.h>
#include <hostkit/files/MediaTypes.h>
#include <hostkit/files/MessageFile.h>
#include <hostkit/files/NewFile.h>
#include <hostkit/files/OutputTarget.h>
#include <hostkit/files/PendingFile.h>
#include <hostkit/files/WorkFolder.h>
#include <hostkit/gateway/CharacterTable.h>
#include <hostkit/gateway/Gateway.h>
#include <hostkit/gateway/Mailbox.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/Answer.h>
#include <hostkit/letter/Diagnosis.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/letter/Letter.h>
#include <hostkit/letter/OpenedMail.h>
#include <hostkit/letter/Outcome.h>
#include <hostkit/letter/SaveLetter.h>

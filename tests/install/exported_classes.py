"""libmailengine.so exports the classes that hosts are promised, and no other name."""
import re
import subprocess
import sys

EXPORTED = """CMailDoc CAddress CEMailWriter COutputStream CFileOutStream CEMailPerser CSmtp CSmtpStream
CMailSendRecv CProgressCallback CLanguage CBase64 CQuotedPrint CFileUtility""".split()

ALLOWED = re.compile(
    r"(?:non-virtual thunk to |virtual thunk to |vtable for |VTT for |typeinfo for |typeinfo name for )?"
    rf"(?:{'|'.join(EXPORTED)})(?:::|$)"
    # The platform's exceptions are raised as pointers, and every library that catches one holds their type.
    r"|typeinfo (?:name )?for C\w*Exception\*$")

listing = subprocess.run(["nm", "-DC", "--defined-only", sys.argv[1]], check=True, capture_output=True, text=True).stdout
names = [line.split(" ", 2)[2] for line in listing.splitlines()]
surplus = [name for name in names if not ALLOWED.match(name)]
for name in surplus:
    print("exported, and in no promised class:", name)
if not names:
    print("nothing is exported at all")
sys.exit(1 if surplus or not names else 0)

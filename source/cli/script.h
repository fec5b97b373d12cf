// Editing scripts: one command per line, run in order against one level with
// one editor and one camera, as a user at the main window would. The engine
// behind orvane-cli run.
//
// Tokens are separated by white space; '#' starts a comment; blank lines are
// skipped; lines may end in CRLF. Numbers are read in the C locale whatever
// the user's: integers and decimals as whole tokens (a leading '+' allowed),
// except the new-light values, which are read as that dialog reads its
// fields. The commands are listed in script.cpp.
#pragma once

#include <iosfwd>
#include <string_view>

// Runs the script over a fresh default level (a document of its own), the
// start-up camera and a 640 x 480 view; the trig tables must be ready. `name`
// names the script in the error lines "orvane-cli run: NAME:LINE: REASON"
// written to err; "dump -" writes to out; messages and beeps go through the
// platform. Lines run one by one, so everything before a failing line has
// happened. Answers 0 when every line ran, 1 when a load, save or dump failed
// and 2 when a line could not be parsed.
int RunScript(std::string_view text, std::string_view name, std::ostream& out, std::ostream& err);

/// Where the files of dragged patterns lie.
#pragma once
#include <string>

/// A folder of this user's alone in a folder that everybody may write to: nobody else can have put
/// a file there under a pattern's name. It is made when it is missing, and where its usual name is
/// somebody else's, a link or open to others, one with another name is made for this process.
/// @param temporary  where to make it, without a trailing slash
/// @return its path; "" when there is none. Thread: user interface.
std::string dragFolder(const std::string& temporary);

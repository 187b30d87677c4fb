// FileAnswers.h: the pages that answer with a file that was generated earlier.
#pragma once

#include "common/UStringX.h"

class ManagerContext;
class WebItem;

// "pdf": sends the file of "/Norvane/pdf" that the argument "index" names to standard output, with
// its header lines, and points standard output at nothing afterwards: the page that the fallback
// then makes is not part of the answer. Always null. Throws a text when there is no such file, or
// when the name is more than a file's name.
WebItem* BuildPdf(ManagerContext& ctx);

// "jsonchart": the chart file that the argument "id" names, if it is one of the session's. Any
// other is answered as one that does not exist.
WebItem* BuildJsonChart(ManagerContext& ctx);

// Is this the name of one of the session's charts? It is the session's id, "_", 32 hexadecimal
// digits that nobody can guess, and ".json".
bool IsOwnChart(const char* name, const UString& sessionId);

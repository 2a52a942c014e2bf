#pragma once

// The small window that shows "SEARCHING..." while a search walks the file tree. Searches nest: the
// outermost BeginSearch opens it, and the matching EndSearch closes it. If it cannot be made, the
// search works without it.

void BeginSearch();
void EndSearch();

#pragma once

// The small window that says "SEARCHING..." while a search walks the file tree. Searches nest: it
// comes with the outermost BeginSearch and goes with the EndSearch that belongs to it. A window
// that cannot be made keeps no search from its work.

void BeginSearch();
void EndSearch();

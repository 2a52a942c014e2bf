#pragma once

#include <memory>

#include "core/wide_text.h"
#include "core/window_operations.h"

// The tree of the device's folders in the folder browser. It is filled one level ahead of what its
// user has opened: a folder gets its own folders when it comes into view.

// Makes `treeView` the tree that the functions below work on, and puts the root into it, opened,
// with the folders in it.
void FillFolderTree(HWND treeView);

// Adds the folders that the search pattern finds, but for the hidden ones, below an item. Returns
// how many there are, also where one could not be added, which a box reports. A folder that cannot
// be read has none.
int AddFolderItems(const WCHAR* pattern, HTREEITEM parentItem);

// The path of the folder that an item stands for, with a backslash at its end, and a "*" after it
// if that is wanted; empty for no item. Null when it does not fit.
std::unique_ptr<PathText> GetItemPath(HTREEITEM item, bool withStar);

// Answers the tree's question for an item's children; other questions are left alone.
void AnswerItemQuery(NMTVDISPINFO& question);

// The item that is selected; null for none.
HTREEITEM SelectedItem();

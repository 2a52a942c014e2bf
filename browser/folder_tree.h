#pragma once

#include <memory>

#include "core/wide_text.h"
#include "core/window_operations.h"

// The tree of the device's folders in the folder browser. It is filled one level ahead: a folder's
// own folders are added when it comes into view.

// Makes `treeView` the tree that the functions below work on, and adds the root, opened, with its
// folders.
void FillFolderTree(HWND treeView);

// Adds the folders that the search pattern finds, except hidden ones, below an item. Returns how
// many there are, with those that could not be added, which a box reports; 0 if the folder cannot
// be read.
int AddFolderItems(const WCHAR* pattern, HTREEITEM parentItem);

// The path of an item's folder, with a backslash at its end and, if `withStar`, a "*" after it;
// empty if `item` is null. Null if it does not fit.
std::unique_ptr<PathText> GetItemPath(HTREEITEM item, bool withStar);

// Answers the tree's question whether an item has children; ignores other questions.
void AnswerItemQuery(NMTVDISPINFO& question);

// The item that is selected; null for none.
HTREEITEM SelectedItem();

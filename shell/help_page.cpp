#include "shell/help_page.h"

const std::string_view kHelpPage = R"(<!DOCTYPE HTML PUBLIC "-//W3C//DTD HTML 3.2//EN">
<HTML>
<HEAD>
<META HTTP-EQUIV="Htm-Help" CONTENT="brightdoc.htm#Main_Contents">
<TITLE>Fennelbright Help</TITLE>
<KEYWORD VALUE="Fennelbright;clean up;tune" TITLE="Fennelbright Help" HREF="brightdoc.htm#Main_Contents">
<KEYWORD VALUE="reset;power;erase" TITLE="The menu Power" HREF="brightdoc.htm#Power">
</HEAD>
<BODY BGCOLOR="#FFFFFF" TEXT="#000000">
<!-- PegHelp -->
<A NAME="Main_Contents"></A>
<P><B>Fennelbright Help</B></P>
<P>Fennelbright cleans up your device and tunes it. You tick what you want on six pages and
choose <B>Apply</B>; nothing is done before that.</P>
<UL>
<LI><A HREF="#How">How to use it</A>
<LI><A HREF="#Temp">The page Clean Temp Files</A>
<LI><A HREF="#Pocket_IE">The page Pocket IE</A>
<LI><A HREF="#Registry">The page Registry</A>
<LI><A HREF="#Folders">The page System Folders</A>
<LI><A HREF="#Shortcuts">The page Shortcuts</A>
<LI><A HREF="#Performance">The page Performance</A>
<LI><A HREF="#Never">What is never touched</A>
<LI><A HREF="#Power">The menu Power</A>
<LI><A HREF="#Messages">Messages</A>
</UL>
<!-- PegHelp --><HR>

<A NAME="How"></A>
<P><B>How to use it</B></P>
<P>Tap the tabs at the bottom to go from page to page, and tick what is to be done. Then choose one
of the two commands of the menu <B>Apply</B>:</P>
<UL>
<LI><B>Allow Restart</B> does the work. If an animation setting was changed, it then saves your
options and restarts the device at once: save your work in other programs first.
<LI><B>Defer Restart</B> does the work and tells you if a restart is needed. You restart the device
when it suits you.
</UL>
<P>A message says how many bytes were freed. What was deleted cannot be brought back.</P>
<P><B>OK</B> at the top, or <B>Exit</B> in the menu <B>Fennelbright</B>, saves your ticks, paths and
choices and closes the program. They are there again next time. A path or a choice is kept only while
its option is ticked. What you select in the three lists is not kept.</P>
<P><A HREF="#Main_Contents">Contents</A></P>
<!-- PegHelp --><HR>

<A NAME="Temp"></A>
<P><B>The page Clean Temp Files</B></P>
<P>What programs put aside and forget. Only files are deleted here; the folders stay, empty.</P>
<UL>
<LI><B>User Defined 1</B> and <B>User Defined 2</B> delete all files in a folder of your choice and
in the folders in it. <B>Browse</B> lets you pick the folder. If you type it, end it with a backslash
(\Games\Cache\): without that nothing is deleted. Be sure that you need nothing in it: a folder "\"
is the whole device, with all memory cards.
<LI><B>\Temp</B>, <B>\Windows\Temp</B> and <B>\My Documents\Temp</B> do the same with these folders.
<LI><B>Search Directories</B> lists, when you tap its <B>Refresh</B>, all folders of the device whose
name contains "Temp" or "temp". All files in the folders that you select in the list, and in the
folders in them, are deleted by Apply. A name says little: look before you select.
<LI><B>Search Files</B> lists, when you tap its <B>Refresh</B>, all files whose names end as you have
ticked: <B>*.tmp</B>, <B>*.log</B>, <B>*.bak</B>, or <B>*.</B> with the three letters that you type
beside it. The files that you select in the list are deleted by Apply, no others.
</UL>
<P><A HREF="#Main_Contents">Contents</A></P>
<!-- PegHelp --><HR>

<A NAME="Pocket_IE"></A>
<P><B>The page Pocket IE</B></P>
<UL>
<LI><B>Clear Pocket IE Cache</B> deletes the copies of web pages that Pocket IE keeps, files and
folders. Pages then load from the network again. Your favorites stay.
<LI><B>Clear Pocket IE History</B> deletes the list of pages that you have visited.
<LI><B>Move Pocket IE Cache</B> makes Pocket IE keep its copies in another folder, for example on a
memory card. The copies in the old folder are deleted, not moved.
<LI><B>Limit Pocket IE Cache</B>, <B>History</B> and <B>Cookies</B> set how much room each may take
up. Nothing is deleted.
<LI><B>Move AvantGo Cache</B> moves AvantGo's channels to another folder and tells AvantGo.
</UL>
<P><A HREF="#Main_Contents">Contents</A></P>
<!-- PegHelp --><HR>

<A NAME="Registry"></A>
<P><B>The page Registry</B></P>
<UL>
<LI><B>Clear Redundant Registry Keys</B> removes from the device's list of applications each one
whose folder is gone. An application stays in the list if its folder is there, or if nobody can say
whether it is. If you keep applications on a memory card, insert the card first.
</UL>
<P><A HREF="#Main_Contents">Contents</A></P>
<!-- PegHelp --><HR>

<A NAME="Folders"></A>
<P><B>The page System Folders</B></P>
<UL>
<LI><B>Move Favorites Storage</B>, <B>Move Fonts Folder</B> and <B>Move My Documents</B> move what is
in the folder to a folder of your choice and tell the device where it is now. Nothing is deleted and
nothing is replaced: a file that has the name of one at the new place stays where it was. With the
folder on a memory card, the device has its content only while the card is inserted.
</UL>
<P><A HREF="#Main_Contents">Contents</A></P>
<!-- PegHelp --><HR>

<A NAME="Shortcuts"></A>
<P><B>The page Shortcuts</B></P>
<UL>
<LI><B>Remove redundant start menu items</B> deletes the shortcuts of the Start menu that lead to a
file or folder that is gone. All others stay, and so does what they lead to. If you keep programs on
a memory card, insert the card first.
<LI><B>Remove selected startup shortcuts</B> deletes the shortcuts that you select in the list. They
are what the device starts by itself when it is switched on after a reset. Only the shortcut goes, not
the program.
</UL>
<P><A HREF="#Main_Contents">Contents</A></P>
<!-- PegHelp --><HR>

<A NAME="Performance"></A>
<P><B>The page Performance</B></P>
<UL>
<LI><B>Set font cache size</B> gives drawn letters the usual room (<B>1x</B>), twice or four times as
much. Text appears faster, and other programs have a little less memory.
<LI><B>Silent cleanup at startup</B> puts a shortcut into the StartUp folder. At each start of the
device Fennelbright then does what you have ticked and saved, without a window and without asking.
What you selected in lists is not part of it. If it is not ticked, Apply removes the shortcut.
<LI><B>Disable start menu animation</B> and <B>Disable window animation</B> let menus and windows
appear at once. If they are not ticked, Apply switches the animations on again. Both need a restart.
</UL>
<P><A HREF="#Main_Contents">Contents</A></P>
<!-- PegHelp --><HR>

<A NAME="Never"></A>
<P><B>What is never touched</B></P>
<UL>
<LI>Anything that you have not ticked or selected, except for the shortcut and the two animation
settings of the page Performance, which always become what their ticks say.
<LI>Read-only files.
<LI>What has, at a new place, the name of something that is to be moved there: it is never replaced.
<LI>An application or a shortcut of which nobody can say whether what it leads to is still there.
<LI>Folders whose name could not be read whole.
</UL>
<P><A HREF="#Main_Contents">Contents</A></P>
<!-- PegHelp --><HR>

<A NAME="Power"></A>
<P><B>The menu Power</B></P>
<P>None of these commands saves your options. Choose <B>OK</B> or <B>Exit</B> first if you want to
keep them.</P>
<UL>
<LI><B>Off</B> switches the device off. Switch it on again, and you are where you were.
<LI><B>Soft Reset</B> restarts the device at once. What you have not saved in other programs is lost.
Files and settings stay.
<LI><B>Hard Reset</B> <B>erases everything</B>: all files, all programs that you have installed and
all settings. You are asked twice; anything but <B>Yes</B> two times stops it. It cannot be undone on
the device. Make a backup first.
</UL>
<P><A HREF="#Main_Contents">Contents</A></P>
<!-- PegHelp --><HR>

<A NAME="Messages"></A>
<P><B>Messages</B></P>
<P>If something cannot be found or opened, a message with the title <B>Error</B> says what. Tap
<B>OK</B>: the rest is done all the same. Files that cannot be deleted or moved are passed over
without a message.</P>
<P><A HREF="#Main_Contents">Contents</A></P>
<!-- PegHelp --><HR>
</BODY>
</HTML>
)";

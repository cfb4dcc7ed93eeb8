// Windows text mode ends a file at a Ctrl-Z byte (0x1A), and so do our
// readers. Old DOS exports end with one, which is nothing to report; but
// bytes after it are input the operator may have meant, so they are counted
// and named on stderr (never on stdout, which is the job's log).
#pragma once


// Prints one line on stderr naming `file_name`, the `line` (counted from 1)
// on which the Ctrl-Z stood and the `unread` bytes after it. Prints nothing
// when `unread` is 0.
void ReportCtrlZ(const char* file_name, long long line, unsigned long long unread);

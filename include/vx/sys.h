#ifndef VX_SYS_H
#define VX_SYS_H

/**
 * @file
 * Commands, programs, the system, its user and its settings.
 *
 * Command lines  Words are divided by blanks. Double quotes hold a word
 *              together; \" is a quote, and backslashes mean something only
 *              in front of a quote: \\" is a backslash and a quote that opens
 *              or closes. The first word is the program: a path, in which a
 *              backslash is always a separator, or a name that is looked for
 *              where the system looks for programs. All words reach the
 *              program as they are, through no shell.
 * Programs     get the standard streams and the environment of this process
 *              and none of its other open files. The exit code of a program
 *              that a signal ended is 128 and the signal's number.
 * Settings     Texts by key ("Software\Company\Product") and name, in the
 *              system's registry. Where the system has none, in a key file:
 *              VX_REGISTRY_FILE, else .config/vx/registry.ini in the user's
 *              home, whose sections are the keys; the machine's begin with
 *              HKEY_LOCAL_MACHINE. Keys and names ignore case. Processes that
 *              write at once do not lose each other's settings.
 * Results      0 done, 1 failed, without a message unless one is told below.
 *              What is filled in a caller's buffer is empty on failure.
 * Threads      Any thread, but VxSysCmd: it captures the standard error of the
 *              whole process, so call it from one thread, while no other
 *              writes there.
 */

#include "vx/types.h"

VX_C_BEGIN

/* ---------------------------------------------------------------- commands and programs */

/**
 * Run a command in the system's shell and wait. What it writes to standard
 * error is kept, however much it is; when its result is not 0, that is written
 * to the event log (talm/base.h, source "Tools", level 3). 512 bytes of it or
 * more end the process: a command that fails with so much is out of control.
 *
 * @param command   as the shell takes it; nothing is translated but the code page
 * @param redirect  with bit 0 or 1 set, standard output goes to the file
 *                  "nulls" in the folder that the variable TEMP names, else in
 *                  the current folder
 * @return the command's result, as the shell gives it; 1 with error 19 of the
 *         toolkit when the command could not be run or its errors not be kept
 */
VX_API int32_t VxSysCmd(const char *command, int32_t redirect);

/**
 * Run a command in a shell, without a window, input and output, and wait. The
 * shell is the one that the variable COMSPEC names, else the system's.
 *
 * @param exitCode  receives it; may be null
 * @return 0 for a shell that ran, whatever came of it; else 1
 */
VX_API uint32_t VxSysCmdHddn(const char *command, int32_t *exitCode);

/**
 * Run a program and wait.
 * @param exitCode  receives it; may be null
 * @return 0 for a program that ran; 1 when it could not be started
 */
VX_API uint32_t VxRunApp(const char *commandLine, int32_t *exitCode);

/**
 * Start a program and go on. It may outlive this process.
 * @param show  0 for no window, input and output
 * @return 0, or 1 when it could not be started
 */
VX_API uint32_t VxRunApp2(const char *commandLine, int32_t show);

/** Pause the calling thread; not at all for 0 or less. */
VX_API void VxPause(double seconds);

/**
 * Look for a running process by its program: the file's name, or its full path
 * when `name` has a separator. It begins with `name`, in any case, so that an
 * ending may be left out. Processes whose program this user may not see do not
 * count.
 *
 * @param processId  receives the process's number, the first one found; may be null
 * @return 1 when one runs, else 0, also for an empty name
 */
VX_API int32_t VxProcessFind(const char *name, uint32_t *processId);

/* ---------------------------------------------------------------- settings */

/**
 * Read a setting.
 * @param root  0 the current user's, 1 the machine's
 * @return 0, or 1 when there is none or it does not fit; `buf` is then empty
 */
VX_API uint32_t VxRegistryGet(int32_t root, const char *key, const char *value, char *buf, int32_t size);

/**
 * Write a setting, with its key when needed. A text may hold anything, line
 * breaks too; key and name may not have line breaks, and in a key file the
 * name no "=" and no "[", "#" or ";" in front.
 * @return 0, or 1 when it cannot be written; the settings are then as they were
 */
VX_API uint32_t VxRegistrySet(int32_t root, const char *key, const char *value, const char *text);

/** The folder of installed programs: the machine's setting "ProgramFilesDir", else C:\Program Files. */
VX_API uint32_t VxProgramFileDir(char *buffer, int32_t size);

/**
 * The user's outgoing mail server: the setting "SMTP Server" of the first mail
 * account that has one. The accounts are the keys below
 * Software\Microsoft\Internet Account Manager\Accounts.
 */
VX_API uint32_t VxFindSmtpServer(char *buf, int32_t size);

/**
 * The user as a sender of mail: the settings "SMTP Email Address", "SMTP
 * Display Name" and "SMTP Organization Name" of the first mail account that
 * has an address.
 * @return 0, or 1 when there is no such account or one of the texts does not
 *         fit; name and organization may be empty
 */
VX_API uint32_t VxFindSmtpUserInfo(char *address, int32_t addressSize, char *name, int32_t nameSize,
                                   char *org, int32_t orgSize);

/* ---------------------------------------------------------------- the desktop */

/**
 * Put an existing file in front of the user's recent documents: the system's
 * list, or recently-used.xbel in the user's data folder, in which the entries
 * of other applications stay.
 * @return 0, or 1 when there is no such file or the list cannot be written or
 *         is damaged; it is then as it was
 */
VX_API uint32_t VxAddToRecent(const char *path);

/**
 * Make or replace a shortcut to a program, document or folder: a shell link,
 * or a .desktop file. The system's ending is put behind `linkPath`, or in
 * place of another system's.
 *
 * @param target       what it leads to; need not exist yet
 * @param arguments    for a program, as in a command line; may be null
 * @param workDir      where a program starts; may be null
 * @param description  may be null
 */
VX_API uint32_t VxShortcutCreate(const char *target, const char *arguments, const char *workDir,
                                 const char *linkPath, const char *description);

/* ---------------------------------------------------------------- the system and its user */

/** Always 1: texts and paths follow the conventions of Windows on every system. */
VX_API int32_t VxIsWindows(void);

/** 1 when the processor has 64 bits. */
VX_API int32_t VxIsWindows64Bit(void);

/** 1 on Windows Vista and Windows 7. */
VX_API int32_t VxWinOsIsVistaWin7(void);

/**
 * The system's version; elsewhere than on Windows that of its kernel.
 *
 * @param major, minor, build  receive its numbers; may be null
 * @return on Windows 10 times the major number and the minor one: 60 for
 *         Vista, 61 for 7, 62 for 8, 63 for 8.1, 100 for 10; else 0
 */
VX_API int32_t VxWinOs(int32_t *major, int32_t *minor, int32_t *build);

/**
 * The system in words: "Windows 7 Business Edition, 64-bit", "Debian GNU/Linux
 * 12 (bookworm), Linux 6.1.0, 64-bit".
 */
VX_API uint32_t VxWinOsInfo(char *buf, int32_t size);

/** The current user's login name. */
VX_API uint32_t VxUserName(char *buf, int32_t size);

/** 1 when `option` stands in `list`, divided by commas; case and blanks around do not count. */
VX_API int32_t VxValidOption(const char *option, const char *list);

VX_C_END

#endif

// Files are created, moved and removed by the host's commands, so that the command log shows it. Such a
// command runs in mode 2 of SysCmd: its failure ends the program with status 1.
#pragma once

// The paths may hold any character: they are quoted here. Each command is logged and shows as a dot, but mv.

// Makes the directory (mkdir -p) if FindFile does not find it; touches the file, if there is a name; then
// sets mode, owner and group (each may be null) of the file, or of the directory if there is no name.
void CreateFile(const char *directory, const char *name, const char *mode, const char *owner,
                const char *group);
// Both do nothing if FindFile does not find the file, or without a name of it. DeleteFile_ with a null name
// takes the path apart.
void DeleteFile(const char *directory, const char *name);
void DeleteFile_(const char *path, const char *name);
void RenameFile(const char *directory, const char *from, const char *to); // does nothing if from is missing

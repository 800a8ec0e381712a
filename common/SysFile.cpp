// Files created, moved and removed by the host's commands.
#include "common/SysFile.h"

#include "common/SysCmd.h"
#include "common/utils.h"

#include <string>

void CreateFile(const char *directory, const char *name, const char *mode, const char *owner,
                const char *group) {
    if (!IsEmpty(directory) && !FindFile(directory, nullptr))
        SysCmd(CMD_MKDIR, 2, "%s", ShArg(directory).c_str());
    std::string path = ShArg(JoinPath(directory, name));
    if (!IsEmpty(name)) SysCmd(CMD_TOUCH, 2, "%s", path.c_str());
    if (mode) SysCmd(CMD_CHMOD, 2, "%s %s", ShArg(mode).c_str(), path.c_str());
    if (owner) SysCmd(CMD_CHOWN, 2, "%s %s", ShArg(owner).c_str(), path.c_str());
    if (group) SysCmd(CMD_CHGRP, 2, "%s %s", ShArg(group).c_str(), path.c_str());
}

void DeleteFile(const char *directory, const char *name) {
    if (IsEmpty(name) || !FindFile(directory, name)) return;
    SysCmd(CMD_RM, 2, "%s", ShArg(JoinPath(directory, name)).c_str());
}

void DeleteFile_(const char *path, const char *name) {
    if (!IsEmpty(name)) return DeleteFile(path, name);
    std::string directory = StripFn(path);
    std::string file = StripPath(path);
    DeleteFile(directory.c_str(), file.c_str());
}

void RenameFile(const char *directory, const char *from, const char *to) {
    if (IsEmpty(from) || IsEmpty(to) || !FindFile(directory, from)) return;
    std::string source = ShArg(JoinPath(directory, from));
    std::string target = ShArg(JoinPath(directory, to));
    SysCmd(-CMD_MV, 2, "%s %s", source.c_str(), target.c_str());
}

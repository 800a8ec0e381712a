// Rules for queue values, the device URI, banner titles and the options that a PPD file offers.
#include "siblings/lib/Queue.h"

#include "common/Words.h"
#include "print/BannerText.h"
#include "print/QueHost.h"
#include "siblings/lib/Ppd.h"
#include "siblings/lib/Say.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>

enum { PORT_MAX = 65535, BANNER_SIZE_MAX = 400, SHOWN_MAX = 80 };

static const char ReservedPrefix[] = "_prnq_";

static bool IsWordByte(char byte) {
    return isalnum(static_cast<unsigned char>(byte)) && static_cast<unsigned char>(byte) < 128;
}

static bool HasOnly(std::string_view text, std::string_view others) {
    return std::all_of(text.begin(), text.end(),
                       [=](char byte) { return IsWordByte(byte) || others.find(byte) != others.npos; });
}

static std::string Wrong(const Sentence &sentence, std::string_view value) {
    return Say(sentence, std::string(value.substr(0, SHOWN_MAX)));
}

std::string CheckQueueName(std::string_view name) {
    if (name.empty()) return Say(SayNameEmpty);
    if (name.size() > QUEUE_NAME_MAX) return Wrong(SayNameLong, name);
    if (name.front() == '-' || !HasOnly(name, "_-")) return Wrong(SayNameLetters, name);
    if (name.starts_with(ReservedPrefix)) return Wrong(SayNameKept, name);
    return "";
}

std::string CheckHostQueueName(std::string_view name) {
    bool flPlain = !name.empty() && name.size() <= 127 && name.front() != '-' &&
                   std::all_of(name.begin(), name.end(), [](char byte) {
                       return static_cast<unsigned char>(byte) > ' ' && byte != '/' && byte != 127;
                   });
    return flPlain ? "" : Wrong(SayNameOfNone, name);
}

bool DiffersByCase(std::string_view left, std::string_view right) {
    return left != right && left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(), [](char l, char r) {
               return tolower(static_cast<unsigned char>(l)) == tolower(static_cast<unsigned char>(r));
           });
}

static bool IsPort(const std::string &port) {
    bool flDigits = !port.empty() && port.size() <= 5 && port.find_first_not_of("0123456789") == port.npos;
    return flDigits && atoi(port.c_str()) >= 1 && atoi(port.c_str()) <= PORT_MAX;
}

static std::string CheckHost(const std::string &host) {
    std::string name, port;
    if (host.empty()) return Say(SayHostEmpty);
    if (host.size() > QUEUE_PRINTER_MAX) return Wrong(SayHostLong, host);
    if (host == "0.0.0.0" || host == "255.255.255.255") return Wrong(SayHostOfNone, host);
    if (!SplitQueHost(host, name, port)) return Wrong(SayHostUnread, host);
    bool flBrackets = name.front() == '[';
    std::string_view inside =
        flBrackets ? std::string_view(name).substr(1, name.size() - 2) : std::string_view(name);
    if (inside.empty() || inside.front() == '-' || !HasOnly(inside, flBrackets ? ":." : "._-"))
        return Wrong(SayHostLetters, host);
    if (!port.empty() && !IsPort(port)) return Wrong(SayHostPort, host);
    return "";
}

// A plain file as a "device" would be overwritten with print data; a path that isn't there yet may be plugged
// in later.
static std::string CheckDevice(const std::string &device) {
    struct stat status;
    if (device.empty()) return Say(SayDeviceEmpty);
    if (device.size() > QUEUE_PRINTER_MAX) return Wrong(SayDeviceLong, device);
    if (device.front() != '/') return Wrong(SayDeviceRelative, device);
    for (char byte : device)
        if (static_cast<unsigned char>(byte) <= ' ' || byte == 127) return Wrong(SayDeviceBlank, device);
    if (("/" + device + "/").find("/../") != std::string::npos) return Wrong(SayDeviceUpwards, device);
    if (stat(device.c_str(), &status)) return "";
    if (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) return Wrong(SayDeviceFile, device);
    if (S_ISBLK(status.st_mode)) return Wrong(SayDeviceDisk, device);
    return "";
}

static std::string CheckPpdName(const std::string &ppd) {
    if (ppd.empty()) return Say(SayPpdEmpty);
    if (ppd.size() > QUEUE_PPD_MAX) return Wrong(SayPpdLong, ppd);
    for (char byte : ppd)
        if (static_cast<unsigned char>(byte) <= ' ' || byte == '/' || byte == 127)
            return Wrong(SayPpdName, ppd);
    return ppd == "." || ppd == ".." ? Wrong(SayPpdDirectory, ppd) : "";
}

std::string CheckQueueTarget(const Queue &queue) {
    if (queue.type < QUEUE_PRINTER_HOST || queue.type > QUEUE_SERVER_DEVICE) return Say(SayTypeUnknown);
    std::string error = IsDeviceType(queue.type) ? CheckDevice(queue.printer) : CheckHost(queue.printer);
    if (!error.empty()) return error;
    if (queue.remote.empty()) return Say(SayRemoteEmpty);
    if (queue.remote.size() > QUEUE_REMOTE_MAX) return Wrong(SayRemoteLong, queue.remote);
    if (queue.remote.front() == '-' || queue.remote.front() == '.' || !HasOnly(queue.remote, "_-."))
        return Wrong(SayRemoteLetters, queue.remote);
    return CheckPpdName(queue.ppd);
}

static std::string EscapeUri(std::string_view path) {
    static const char Digits[] = "0123456789ABCDEF";
    std::string escaped;
    for (char byte : path) {
        if (IsWordByte(byte) || strchr("/._-~", byte)) {
            escaped += byte;
            continue;
        }
        escaped += '%';
        escaped += Digits[static_cast<unsigned char>(byte) >> 4];
        escaped += Digits[static_cast<unsigned char>(byte) & 15];
    }
    return escaped;
}

Target QueueTarget(const Queue &queue) {
    Target target;
    if (IsDeviceType(queue.type)) return {TARGET_DEVICE, "", "", queue.printer};
    bool flLpd = queue.type == QUEUE_SERVER || (queue.type == QUEUE_PRINTER_HOST && queue.flLpd);
    if (flLpd) target = {TARGET_LPD, "", "", queue.remote};
    SplitQueHost(queue.printer, target.host, target.port);
    if (target.host.starts_with('[')) target.host = target.host.substr(1, target.host.size() - 2);
    return target;
}

static std::string DeviceUri(const std::string &device) {
    bool flSerial = device.starts_with("/dev/tty");
    return (flSerial ? "serial:" : "parallel:") + EscapeUri(device) + (flSerial ? "?baud=9600" : "");
}

std::string QueueUri(const Queue &queue) {
    Target target = QueueTarget(queue);
    if (target.kind == TARGET_DEVICE) return DeviceUri(target.path);
    std::string host = target.host.find(':') == std::string::npos ? target.host : "[" + target.host + "]";
    if (target.kind == TARGET_LPD)
        return "lpd://" + host + (target.port.empty() ? "" : ":" + target.port) + "/" +
               EscapeUri(target.path);
    return "socket://" + host + ":" + (target.port.empty() ? "9100" : target.port);
}

Titles ReadTitles(std::string_view banner) {
    Titles titles;
    for (BannerTextLine line; TakeBannerLine(banner, &line);) {
        int size = atoi(std::string(line.size).c_str());
        bool flBlank = line.title.find_first_not_of(" \t") == line.title.npos;
        if (size < 1 || size > BANNER_SIZE_MAX || flBlank) continue;
        titles[static_cast<size_t>(line.row)] = {std::string(line.title), size};
    }
    return titles;
}

bool HasTitle(std::string_view banner) {
    Titles titles = ReadTitles(banner);
    return std::any_of(titles.begin(), titles.end(), [](const Title &title) { return !title.text.empty(); });
}

std::vector<std::string> OfferedSettings(std::string_view settings, std::string_view ppdText) {
    Ppd ppd;
    ReadPpdText(ppdText, ppd);
    std::vector<std::string> offered;
    for (std::string_view line; TakePlainLine(settings, line);)
        if (ppd.offered.contains(std::string(line))) offered.emplace_back(line);
    return offered;
}

std::string PpdText(std::string_view ppdText, std::string_view keyword) {
    std::string lead = "*" + std::string(keyword) + ":";
    for (std::string_view line; TakePlainLine(ppdText, line);) {
        if (!line.starts_with(lead)) continue;
        size_t first = line.find('"'), last = line.rfind('"');
        return last > first ? std::string(line.substr(first + 1, last - first - 1)) : "";
    }
    return "";
}

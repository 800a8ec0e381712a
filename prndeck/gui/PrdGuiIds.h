// What the texts of the windows and the program agree on: the numbers under which objects are heard, and the
// names of the entries of the menu.
//
// Each handler has an enum. Numbers come from the texts: an object takes the next one, so that an object put
// in between moves all behind it. Each number has a row in GuiIds for each object that bears it, and each
// name a row with its number, or 0 if nothing is heard of it: checkwin holds the rows against the texts.
#pragma once

// The entries of the menu, which the reader names by their place.
#define MENU_BAR          "printer_menu"
#define MENU_SPACER_LEFT  MENU_BAR "_1"
#define MENU_SPACER_RIGHT MENU_BAR "_6"
#define MENU_QUEUES       MENU_BAR "_2_b_1_pd"
#define MENU_JOBS         MENU_BAR "_2_b_2"
#define MENU_DISCOVERY    MENU_BAR "_2_b_3"
#define MENU_TEST_PAGE    MENU_BAR "_3_c_1"
#define MENU_SEND_FILE    MENU_BAR "_3_c_2"
#define MENU_UPGRADE      MENU_BAR "_3_c_3"
#define MENU_BROWSER      MENU_BAR "_3_c_4"
#define MENU_RESET        MENU_BAR "_3_c_5"
#define MENU_PROPERTIES   MENU_BAR "_3_c_6"
#define MENU_WEB          MENU_BAR "_3_c_7"
#define MENU_DRIVER       MENU_BAR "_3_c_8"
#define MENU_HELP         MENU_BAR "_5_d_1"
#define MENU_EXIT         MENU_BAR "_7"

// WizEventHandler: 100 to 149 the main window, 150 About, 200 to 207 the display window, 550 to 552 what is
// sent to a queue
enum {
    WIZ_MAIN = 100, // F1 in any window
    WIZ_ADD = 102,
    WIZ_WEB_ENTRY = 103, // of an entry that has a format, so nothing is heard of it
    WIZ_TEST_PAGE = 108,
    WIZ_SEND_FILE = 109,
    WIZ_UPGRADE = 110,
    WIZ_BROWSER = 111,
    WIZ_DRIVER = 115,
    WIZ_HELP = 117,
    WIZ_EXIT = 120,
    WIZ_WEB = 124,
    WIZ_CONTENTS = 126, // no object that is heard has it
    WIZ_LIST = 130,
    WIZ_REFRESH = 131,
    WIZ_PROFILE = 132, // no object has it
    WIZ_DISPLAY = 200,
    WIZ_DISPLAY_NAME = 201,
    WIZ_DISPLAY_ADDRESS = 202,
    WIZ_DISPLAY_HWADR = 203,
    WIZ_DISPLAY_DESCRIPTION = 204,
    WIZ_DISPLAY_OK = 205,
    WIZ_DISPLAY_APPLY = 207,
    WIZ_SEND_QUEUE = 551,
    WIZ_SEND_APPLY = 552,
    WIZ_FILE = 1000, // the answer of the file dialog
};

// IPDiscoveryEventHandler: 570 to 576 the browser and the questions of a reset, 600 to 641 the discovery
enum {
    DISC_BROWSER_OK = 572,
    DISC_DIALOG = 600,
    DISC_TABS = 601,
    DISC_SUBNETS = 621,
    DISC_SUBNET_ADD = 622,
    DISC_SUBNET_REMOVE = 623,
    DISC_SUBNET_SWITCH = 624,
    DISC_SUBNET_SCAN = 625,
    DISC_ADDRESSES = 637,
    DISC_ADDRESS_ADD = 638,
    DISC_ADDRESS_REMOVE = 639,
    DISC_OK = 640,
    DISC_APPLY = 641,
};

// The same: the reset, 700 to 1190 the property sheet
enum {
    RESET_WAIT_CLOSE = 458,
    RESET_CONFIRM = 576,
    SHEET_WINDOW = 700,
    SHEET_TABS = 702,
    SHEET_STATUS_TABS = 706,
    SHEET_SET_INTERVAL = 733,
    SHEET_SAVE_INTERVAL = 734,
    SHEET_REFRESH = 735,
    SHEET_NETWORK_TABS = 1089,
    SHEET_SETTINGS_TABS = 1150,
    SHEET_OK = 1184,
    SHEET_APPLY = 1185,
    SHEET_CANCEL = 1186,
};

// WizardEventHandler: 300 to 372 the lists, 400 to 417 a new queue, 420 to 431 banner titles, 435 to 445 a
// copy, 450 to 457 changes of a queue, 500 to 525 waiting jobs
enum {
    WIZARD_MODIFY_LIST = 300,
    WIZARD_MODIFY_CHOICE = 301,
    WIZARD_MODIFY = 302,
    WIZARD_DELETE = 350,
    WIZARD_DELETE_CHOICE = 351,
    WIZARD_DELETE_OK = 352,
    WIZARD_DELETE_APPLY = 353,
    WIZARD_DELETE_ALL = 354,
    WIZARD_COPY_LIST = 370,
    WIZARD_COPY_CHOICE = 371,
    WIZARD_COPY = 372,
    WIZARD_ADD = 400,
    WIZARD_ADD_NAME = 401,
    WIZARD_ADD_MODEL = 402,
    WIZARD_ADD_PRINTING_MODEL = 403,
    WIZARD_ADD_CONNECTION = 404,
    WIZARD_ADD_HOST = 405,
    WIZARD_ADD_REMOTE = 406,
    WIZARD_ADD_DEVICE = 407,
    WIZARD_ADD_DEFAULT = 408,
    WIZARD_ADD_FEATURES = 409,
    WIZARD_ADD_INTERFACE = 410,
    WIZARD_ADD_BANNER = 411,
    WIZARD_ADD_DAEMON = 412,
    WIZARD_ADD_SETUP = 413,
    WIZARD_ADD_TITLES = 414,
    WIZARD_ADD_APPLY = 415,
    WIZARD_BANNER_TITLE_1 = 421,
    WIZARD_BANNER_TITLE_2 = 423,
    WIZARD_BANNER_TITLE_3 = 425,
    WIZARD_BANNER_APPLY = 428,
    WIZARD_BANNER_CANCEL = 429,
    WIZARD_BANNER_DEFAULTS = 430,
    WIZARD_NEW_NAME = 436,
    WIZARD_NEW_PRINTING_MODEL = 438,
    WIZARD_NEW_CONNECTION = 439,
    WIZARD_NEW_HOST = 440,
    WIZARD_NEW_REMOTE = 441,
    WIZARD_NEW_DEVICE = 442,
    WIZARD_NEW_APPLY = 443,
    WIZARD_MOD_FEATURES = 451,
    WIZARD_MOD_INTERFACE = 452,
    WIZARD_MOD_BANNER = 453,
    WIZARD_MOD_DEFAULT = 454,
    WIZARD_MOD_SETUP = 455,
    WIZARD_MOD_TITLES = 456,
    WIZARD_MOD_APPLY = 457,
    WIZARD_JOB_COUNTS = 500,
    WIZARD_JOB_QUEUE = 501,
    WIZARD_JOB_COUNTS_CLOSE = 502,
    WIZARD_JOB_COUNTS_REFRESH = 503,
    WIZARD_JOB_INTERVAL = 521,
    WIZARD_JOB_CHOICE = 522,
    WIZARD_JOB_CLOSE = 523,
    WIZARD_JOB_DELETE = 524,
    WIZARD_JOB_DELETE_ALL = 525,
};

struct GuiId {
    int id; // 0: whatever number it has
    const char *object;
};
inline constexpr GuiId GuiIds[] = {
    {0, MENU_BAR},
    {0, MENU_SPACER_LEFT},
    {0, MENU_SPACER_RIGHT},
    {0, MENU_QUEUES},
    {0, MENU_JOBS},
    {0, MENU_DISCOVERY},
    {WIZ_TEST_PAGE, MENU_TEST_PAGE},
    {WIZ_SEND_FILE, MENU_SEND_FILE},
    {WIZ_UPGRADE, MENU_UPGRADE},
    {WIZ_BROWSER, MENU_BROWSER},
    {0, MENU_RESET},
    {0, MENU_PROPERTIES},
    {0, MENU_WEB},
    {WIZ_MAIN, "prndeck"},
    {WIZ_ADD, "tb1"},
    {WIZ_DRIVER, MENU_DRIVER},
    {WIZ_HELP, MENU_HELP},
    {WIZ_HELP, "tb6"},
    {WIZ_EXIT, MENU_EXIT},
    {WIZ_WEB, "tb3i"},
    {WIZ_LIST, "scrolList"},
    {WIZ_REFRESH, "RefreshButton"},
    {WIZ_DISPLAY, "dsw"},
    {WIZ_DISPLAY_NAME, "d_dn"},
    {WIZ_DISPLAY_ADDRESS, "d_ip"},
    {WIZ_DISPLAY_HWADR, "d_ea"},
    {WIZ_DISPLAY_DESCRIPTION, "d_dt"},
    {WIZ_DISPLAY_OK, "do"},
    {WIZ_DISPLAY_APPLY, "da"},
    {WIZ_SEND_QUEUE, "sfql"},
    {WIZARD_JOB_COUNTS, "jmw"},
    {WIZARD_JOB_QUEUE, "jmql"},
    {WIZARD_JOB_COUNTS_CLOSE, "jme"},
    {WIZARD_JOB_COUNTS_REFRESH, "jmr"},
    {WIZARD_JOB_INTERVAL, "jmt"},
    {WIZARD_JOB_CHOICE, "jmsjl"},
    {WIZARD_JOB_CLOSE, "jmse"},
    {WIZARD_JOB_DELETE, "jmsd"},
    {WIZARD_JOB_DELETE_ALL, "jmsda"},
    {WIZ_SEND_APPLY, "sfap"},
    {DISC_BROWSER_OK, "bro"},
    {DISC_DIALOG, "ipDisc"},
    {DISC_TABS, "ipdt"},
    {DISC_SUBNETS, "ipsl"},
    {DISC_SUBNET_ADD, "ipsna"},
    {DISC_SUBNET_REMOVE, "ipsnr"},
    {DISC_SUBNET_SWITCH, "ipsned"},
    {DISC_SUBNET_SCAN, "ipsnin"},
    {DISC_ADDRESSES, "ipal"},
    {DISC_ADDRESS_ADD, "ipaa"},
    {DISC_ADDRESS_REMOVE, "ipar"},
    {DISC_OK, "idb1"},
    {DISC_APPLY, "idb2"},
    {RESET_WAIT_CLOSE, "rwb1"},
    {RESET_CONFIRM, "resetconf"},
    {SHEET_WINDOW, "snmp"},
    {SHEET_TABS, "sdbt"},
    {SHEET_STATUS_TABS, "sdbt2"},
    {SHEET_SET_INTERVAL, "snmpris"},
    {SHEET_SAVE_INTERVAL, "snmpsai"},
    {SHEET_REFRESH, "snmprn"},
    {SHEET_NETWORK_TABS, "ssntab"},
    {SHEET_SETTINGS_TABS, "sdbt3"},
    {SHEET_OK, "snmpb1"},
    {SHEET_APPLY, "snmpb2"},
    {SHEET_CANCEL, "snmpb3"},
    {WIZARD_MODIFY_LIST, "mqw"},
    {WIZARD_MODIFY_CHOICE, "mql"},
    {WIZARD_MODIFY, "mq"},
    {WIZARD_DELETE, "dqw"},
    {WIZARD_DELETE_CHOICE, "dql"},
    {WIZARD_DELETE_OK, "dqo"},
    {WIZARD_DELETE_APPLY, "dqd"},
    {WIZARD_DELETE_ALL, "dqa"},
    {WIZARD_COPY_LIST, "cqw"},
    {WIZARD_COPY_CHOICE, "cql"},
    {WIZARD_COPY, "cq"},
    {WIZARD_ADD, "wqw"},
    {WIZARD_ADD_NAME, "wqn"},
    {WIZARD_ADD_MODEL, "wqpm"},
    {WIZARD_ADD_PRINTING_MODEL, "wqcm"},
    {WIZARD_ADD_CONNECTION, "wqc"},
    {WIZARD_ADD_HOST, "wqhn"},
    {WIZARD_ADD_REMOTE, "wqrpn"},
    {WIZARD_ADD_DEVICE, "wqdn"},
    {WIZARD_ADD_DEFAULT, "wqdp"},
    {WIZARD_ADD_FEATURES, "wqf"},
    {WIZARD_ADD_INTERFACE, "wqgt"},
    {WIZARD_ADD_BANNER, "wqbp"},
    {WIZARD_ADD_DAEMON, "wqd"},
    {WIZARD_ADD_SETUP, "wqfs"},
    {WIZARD_ADD_TITLES, "wqcbp"},
    {WIZARD_ADD_APPLY, "wqap"},
    {WIZARD_BANNER_TITLE_1, "cbph1"},
    {WIZARD_BANNER_TITLE_2, "cbph2"},
    {WIZARD_BANNER_TITLE_3, "cbph3"},
    {WIZARD_BANNER_APPLY, "cbpap"},
    {WIZARD_BANNER_CANCEL, "cbpca"},
    {WIZARD_BANNER_DEFAULTS, "cbpda"},
    {WIZARD_NEW_NAME, "clqn"},
    {WIZARD_NEW_PRINTING_MODEL, "clcm"},
    {WIZARD_NEW_CONNECTION, "clc"},
    {WIZARD_NEW_HOST, "clhn"},
    {WIZARD_NEW_REMOTE, "clrpn"},
    {WIZARD_NEW_DEVICE, "cldn"},
    {WIZARD_NEW_APPLY, "clqap"},
    {WIZARD_MOD_FEATURES, "wmqf"},
    {WIZARD_MOD_INTERFACE, "wmqgt"},
    {WIZARD_MOD_BANNER, "wmqbp"},
    {WIZARD_MOD_DEFAULT, "wmqdp"},
    {WIZARD_MOD_SETUP, "wmqfs"},
    {WIZARD_MOD_TITLES, "wmqcbp"},
    {WIZARD_MOD_APPLY, "wmqap"},
};

/* qvLogModules.h - the module numbers that classify messages, their names and whether they log by default.
 *
 * A module's switch in the configuration file is "LOG_" and its name, in the section of each logger. A number
 * below QVLOG_MAX_MODULES that has no row here can be used too: its switch is "LOG_" and the number. Numbers
 * from QVLOG_MAX_MODULES on are always active. */
#ifndef QVLOG_QVLOGMODULES_H
#define QVLOG_QVLOGMODULES_H

#include "qvOS/qvTypes.h"

/* The number of a module. */
typedef uint16 qvLogModule;

/* The size of the module table in each logger. */
#define QVLOG_MAX_MODULES 512

/* Whether a module logs for which nothing else is said. */
#define kqvLog_DefaultIsToLog 1

/* The table: code, name, default activity (1 logs, 0 is silent until the configuration switches it on). The
 * codes 151 to 199 are unassigned. Codes are compiled into client programs: never renumber. */
/* clang-format off */
#define QVLOG_MODULE_TABLE \
  QVLOG_DECMOD(  0, DEFAULT,              1) \
  QVLOG_DECMOD(  1, SYSTEM,               1) \
  QVLOG_DECMOD(  2, STARTUP,              1) \
  QVLOG_DECMOD(  3, SHUTDOWN,             1) \
  QVLOG_DECMOD(  4, SCHEDULER,            0) \
  QVLOG_DECMOD(  5, THREADS,              1) \
  QVLOG_DECMOD(  6, MEMORY,               1) \
  QVLOG_DECMOD(  7, TIMERS,               1) \
  QVLOG_DECMOD(  8, EVENTS,               1) \
  QVLOG_DECMOD(  9, MESSAGES,             1) \
  QVLOG_DECMOD( 10, SETTINGS,             1) \
  QVLOG_DECMOD( 11, PLATFORM,             1) \
  QVLOG_DECMOD( 12, POWER,                1) \
  QVLOG_DECMOD( 13, WATCHDOG,             1) \
  QVLOG_DECMOD( 14, PROCESS,              1) \
  QVLOG_DECMOD( 15, UPDATE,               1) \
  QVLOG_DECMOD( 16, INSTALL,              1) \
  QVLOG_DECMOD( 17, LICENSES,             1) \
  QVLOG_DECMOD( 18, FILES,                1) \
  QVLOG_DECMOD( 19, STRINGS,              1) \
  QVLOG_DECMOD( 20, PACKETS,              0) \
  QVLOG_DECMOD( 21, DEMUX,                1) \
  QVLOG_DECMOD( 22, PES_HEADER,           0) \
  QVLOG_DECMOD( 23, SECTIONS,             1) \
  QVLOG_DECMOD( 24, PSI_TABLES,           1) \
  QVLOG_DECMOD( 25, SI_TABLES,            1) \
  QVLOG_DECMOD( 26, TRANSPORT,            1) \
  QVLOG_DECMOD( 27, MULTIPLEX,            1) \
  QVLOG_DECMOD( 28, TUNER,                1) \
  QVLOG_DECMOD( 29, FRONTEND,             1) \
  QVLOG_DECMOD( 30, SATELLITE,            1) \
  QVLOG_DECMOD( 31, CABLE,                1) \
  QVLOG_DECMOD( 32, TERRESTRIAL,          1) \
  QVLOG_DECMOD( 33, DISEQC,               1) \
  QVLOG_DECMOD( 34, CHANNEL_SCAN,         1) \
  QVLOG_DECMOD( 35, CHANNELS,             1) \
  QVLOG_DECMOD( 36, SERVICES,             1) \
  QVLOG_DECMOD( 37, EPG,                  1) \
  QVLOG_DECMOD( 38, EIT,                  1) \
  QVLOG_DECMOD( 39, TELETEXT,             1) \
  QVLOG_DECMOD( 40, SUBTITLES,            1) \
  QVLOG_DECMOD( 41, CLOSED_CAPTIONS,      1) \
  QVLOG_DECMOD( 42, DECODER,              1) \
  QVLOG_DECMOD( 43, AUDIO_DECODER,        1) \
  QVLOG_DECMOD( 44, VIDEO_DECODER,        1) \
  QVLOG_DECMOD( 45, IMAGE_DECODER,        1) \
  QVLOG_DECMOD( 46, ENCODER,              1) \
  QVLOG_DECMOD( 47, TRANSCODER,           1) \
  QVLOG_DECMOD( 48, RENDERER,             1) \
  QVLOG_DECMOD( 49, AUDIO_SINK,           1) \
  QVLOG_DECMOD( 50, VIDEO_SINK,           1) \
  QVLOG_DECMOD( 51, AUDIO_MIXER,          1) \
  QVLOG_DECMOD( 52, AV_SYNC,              1) \
  QVLOG_DECMOD( 53, CLOCKS,               0) \
  QVLOG_DECMOD( 54, TIMESTAMPS,           0) \
  QVLOG_DECMOD( 55, BUFFER_LEVELS,        0) \
  QVLOG_DECMOD( 56, FRAME_DROPS,          0) \
  QVLOG_DECMOD( 57, CODECS,               1) \
  QVLOG_DECMOD( 58, CODEC_MPEG,           1) \
  QVLOG_DECMOD( 59, CODEC_AVC,            1) \
  QVLOG_DECMOD( 60, CODEC_HEVC,           1) \
  QVLOG_DECMOD( 61, CODEC_AAC,            1) \
  QVLOG_DECMOD( 62, CODEC_AC3,            1) \
  QVLOG_DECMOD( 63, CODEC_MP3,            1) \
  QVLOG_DECMOD( 64, CODEC_PCM,            1) \
  QVLOG_DECMOD( 65, CODEC_JPEG,           1) \
  QVLOG_DECMOD( 66, CODEC_PNG,            1) \
  QVLOG_DECMOD( 67, PLAYER,               1) \
  QVLOG_DECMOD( 68, PLAYLIST,             1) \
  QVLOG_DECMOD( 69, PLAYBACK,             1) \
  QVLOG_DECMOD( 70, TRICKPLAY,            1) \
  QVLOG_DECMOD( 71, TIMESHIFT,            1) \
  QVLOG_DECMOD( 72, RECORDER,             1) \
  QVLOG_DECMOD( 73, RECORDINGS,           1) \
  QVLOG_DECMOD( 74, SCHEDULED_RECORDINGS, 1) \
  QVLOG_DECMOD( 75, BOOKMARKS,            1) \
  QVLOG_DECMOD( 76, RESUME,               1) \
  QVLOG_DECMOD( 77, SEEKING,              1) \
  QVLOG_DECMOD( 78, STREAMING,            1) \
  QVLOG_DECMOD( 79, STREAM_BUFFER,        1) \
  QVLOG_DECMOD( 80, STREAM_SOURCE,        1) \
  QVLOG_DECMOD( 81, CONTAINER,            1) \
  QVLOG_DECMOD( 82, CONTAINER_TS,         1) \
  QVLOG_DECMOD( 83, CONTAINER_MP4,        1) \
  QVLOG_DECMOD( 84, CONTAINER_MKV,        1) \
  QVLOG_DECMOD( 85, CONTAINER_AVI,        1) \
  QVLOG_DECMOD( 86, CONTAINER_OGG,        1) \
  QVLOG_DECMOD( 87, CONTAINER_WAV,        1) \
  QVLOG_DECMOD( 88, CAPTURE,              1) \
  QVLOG_DECMOD( 89, CAMERA,               1) \
  QVLOG_DECMOD( 90, NETWORK,              1) \
  QVLOG_DECMOD( 91, NET_SOCKET,           1) \
  QVLOG_DECMOD( 92, NET_DNS,              1) \
  QVLOG_DECMOD( 93, NET_TLS,              1) \
  QVLOG_DECMOD( 94, NET_PROXY,            1) \
  QVLOG_DECMOD( 95, NET_WIFI,             1) \
  QVLOG_DECMOD( 96, NET_ETHERNET,         1) \
  QVLOG_DECMOD( 97, NET_BLUETOOTH,        1) \
  QVLOG_DECMOD( 98, HTTP,                 1) \
  QVLOG_DECMOD( 99, HTTP_SERVER,          1) \
  QVLOG_DECMOD(100, HTTP_CLIENT,          1) \
  QVLOG_DECMOD(101, HTTP_HEADERS,         1) \
  QVLOG_DECMOD(102, RTSP,                 1) \
  QVLOG_DECMOD(103, RTP,                  1) \
  QVLOG_DECMOD(104, RTCP,                 1) \
  QVLOG_DECMOD(105, MULTICAST,            1) \
  QVLOG_DECMOD(106, DISCOVERY,            1) \
  QVLOG_DECMOD(107, UPNP,                 1) \
  QVLOG_DECMOD(108, UPNP_DEVICE,          1) \
  QVLOG_DECMOD(109, UPNP_CONTROL,         1) \
  QVLOG_DECMOD(110, MEDIA_SERVER,         1) \
  QVLOG_DECMOD(111, MEDIA_RENDERER,       1) \
  QVLOG_DECMOD(112, MEDIA_CONTROL,        1) \
  QVLOG_DECMOD(113, CONTENT_DIRECTORY,    1) \
  QVLOG_DECMOD(114, CONNECTION_MANAGER,   1) \
  QVLOG_DECMOD(115, AV_TRANSPORT,         1) \
  QVLOG_DECMOD(116, DLNA,                 1) \
  QVLOG_DECMOD(117, XML,                  1) \
  QVLOG_DECMOD(118, JSON,                 1) \
  QVLOG_DECMOD(119, SOAP,                 1) \
  QVLOG_DECMOD(120, METADATA,             1) \
  QVLOG_DECMOD(121, META_ID3,             1) \
  QVLOG_DECMOD(122, META_EXIF,            1) \
  QVLOG_DECMOD(123, THUMBNAILS,           1) \
  QVLOG_DECMOD(124, ARTWORK,              1) \
  QVLOG_DECMOD(125, LIBRARY,              1) \
  QVLOG_DECMOD(126, LIBRARY_SCAN,         1) \
  QVLOG_DECMOD(127, DATABASE,             1) \
  QVLOG_DECMOD(128, SEARCH,               1) \
  QVLOG_DECMOD(129, SORTING,              1) \
  QVLOG_DECMOD(130, STORAGE,              1) \
  QVLOG_DECMOD(131, STORAGE_USB,          1) \
  QVLOG_DECMOD(132, STORAGE_DISC,         1) \
  QVLOG_DECMOD(133, STORAGE_CARD,         1) \
  QVLOG_DECMOD(134, FILESYSTEM,           1) \
  QVLOG_DECMOD(135, CACHE,                1) \
  QVLOG_DECMOD(136, DOWNLOAD,             1) \
  QVLOG_DECMOD(137, UPLOAD,               1) \
  QVLOG_DECMOD(138, SYNC,                 1) \
  QVLOG_DECMOD(139, BACKUP,               1) \
  QVLOG_DECMOD(140, SECURITY,             1) \
  QVLOG_DECMOD(141, ACCESS,               1) \
  QVLOG_DECMOD(142, CRYPTO,               1) \
  QVLOG_DECMOD(143, CERTIFICATES,         1) \
  QVLOG_DECMOD(144, RIGHTS,               1) \
  QVLOG_DECMOD(145, COND_ACCESS,          1) \
  QVLOG_DECMOD(146, SMARTCARD,            1) \
  QVLOG_DECMOD(147, PARENTAL,             1) \
  QVLOG_DECMOD(148, ACCOUNTS,             1) \
  QVLOG_DECMOD(149, USERS,                1) \
  QVLOG_DECMOD(150, SESSIONS,             1) \
  QVLOG_DECMOD(200, GUI,                  1) \
  QVLOG_DECMOD(201, GUI_EVENTS,           0) \
  QVLOG_DECMOD(202, GUI_LAYOUT,           1) \
  QVLOG_DECMOD(203, GUI_FONTS,            1) \
  QVLOG_DECMOD(204, GUI_IMAGES,           1) \
  QVLOG_DECMOD(205, GUI_ANIMATION,        1) \
  QVLOG_DECMOD(206, GUI_THEME,            1) \
  QVLOG_DECMOD(207, GUI_MENU,             1) \
  QVLOG_DECMOD(208, GUI_DIALOG,           1) \
  QVLOG_DECMOD(209, GUI_KEYBOARD,         1) \
  QVLOG_DECMOD(210, GUI_OSD,              1) \
  QVLOG_DECMOD(211, GRAPHICS,             1) \
  QVLOG_DECMOD(212, GRAPHICS_BLIT,        1) \
  QVLOG_DECMOD(213, DISPLAY,              1) \
  QVLOG_DECMOD(214, DISPLAY_MODE,         1) \
  QVLOG_DECMOD(215, HDMI,                 1) \
  QVLOG_DECMOD(216, HDMI_CEC,             1) \
  QVLOG_DECMOD(217, FRONT_PANEL,          1) \
  QVLOG_DECMOD(218, REMOTE_CONTROL,       1) \
  QVLOG_DECMOD(219, INPUT,                1) \
  QVLOG_DECMOD(220, INPUT_KEYS,           1) \
  QVLOG_DECMOD(221, INPUT_POINTER,        1) \
  QVLOG_DECMOD(222, BROWSER,              1) \
  QVLOG_DECMOD(223, SCRIPTING,            1) \
  QVLOG_DECMOD(224, PLUGINS,              1) \
  QVLOG_DECMOD(225, APPLICATIONS,         1) \
  QVLOG_DECMOD(226, APP_MANAGER,          1) \
  QVLOG_DECMOD(227, INTERACTIVE,          1) \
  QVLOG_DECMOD(228, WEB_SERVICES,         1) \
  QVLOG_DECMOD(229, FEEDS,                1) \
  QVLOG_DECMOD(230, WEATHER,              1) \
  QVLOG_DECMOD(231, NEWS,                 1) \
  QVLOG_DECMOD(232, PHOTOS,               1) \
  QVLOG_DECMOD(233, MUSIC,                1) \
  QVLOG_DECMOD(234, MOVIES,               1) \
  QVLOG_DECMOD(235, RADIO,                1) \
  QVLOG_DECMOD(236, TELEVISION,           1) \
  QVLOG_DECMOD(237, GAMES,                1) \
  QVLOG_DECMOD(238, TELEPHONY,            1) \
  QVLOG_DECMOD(239, VOICE,                1) \
  QVLOG_DECMOD(240, NOTIFY,               1) \
  QVLOG_DECMOD(241, ALARMS,               1) \
  QVLOG_DECMOD(242, SLEEP_TIMER,          1) \
  QVLOG_DECMOD(243, LANGUAGE,             1) \
  QVLOG_DECMOD(244, LOCATION,             1) \
  QVLOG_DECMOD(245, TIME_DATE,            1) \
  QVLOG_DECMOD(246, DIAGNOSTICS,          1) \
  QVLOG_DECMOD(247, STATISTICS,           1) \
  QVLOG_DECMOD(248, BENCHMARK,            1) \
  QVLOG_DECMOD(249, SELF_TEST,            1) \
  QVLOG_DECMOD(250, FACTORY,              1) \
  QVLOG_DECMOD(251, REMOTE_ACCESS,        1) \
  QVLOG_DECMOD(252, REMOTE_LOG,           1) \
  QVLOG_DECMOD(253, IPC,                  1) \
  QVLOG_DECMOD(254, IPC_SERVER,           1) \
  QVLOG_DECMOD(255, IPC_CLIENT,           1) \
  QVLOG_DECMOD(256, TRACE,                1) \
  QVLOG_DECMOD(257, SENSORS,              1) \
  QVLOG_DECMOD(258, LEDS,                 1) \
  QVLOG_DECMOD(259, FAN,                  1) \
  QVLOG_DECMOD(260, VOLUME,               1) \
  QVLOG_DECMOD(261, EQUALIZER,            1)
/* clang-format on */

/* The enumeration of QVLOG_M_<name>. Whoever needs the table in another shape redefines QVLOG_DECMOD in a
 * source file and expands QVLOG_MODULE_TABLE again. */
#define QVLOG_DECMOD_BEGIN              typedef enum {
#define QVLOG_DECMOD(code, name, value) QVLOG_M_##name = code,
#define QVLOG_DECMOD_END \
  }                      \
  __qvLogModules;

QVLOG_DECMOD_BEGIN
QVLOG_MODULE_TABLE
QVLOG_DECMOD_END

#endif

/* SPDX-License-Identifier: MIT */
/*
 * vellum/vellum.h - the font register: register fonts, find them, hear of changes.
 *
 * Rules that hold for every function here, besides those of values.h:
 *
 *  1. Threads. Any thread may call any function at any time. Where the legacy font service keeps another
 *     library in step (see vellum/fount.h), a change reaches into that library as well, and the program's
 * own threads in there are its affair; kVLScopeLegacyTold leaves the service out.
 *  2. Failure. Queries answer null for "nothing", for bad arguments and for failure alike; changes
 *     answer false. Nothing is thrown, nothing is printed, the process is never ended.
 *  3. Ownership. What a Copy or Create function returns is the caller's, to be given back with
 *     ValRelease; so are arrays handed out through a pointer. Get functions return borrowed
 *     pointers that live as long as the process.
 *  4. Containers. What is handed to a query holds values, under kValValueCallbacks; containers with a
 *     caller's own callbacks, or inside such ones, are bad arguments.
 *  5. Laziness. Loading the library does nothing; the first call that needs a register makes it.
 *  6. Forks. A child of fork may call everything here, without exec and whatever other threads of its
 *     parent were doing: a fork waits until they have left the library, though not while they wait for the
 *     font server or are in a callback, and five seconds at the most. The child has the process's own
 *     register as its parent had it then, meets the font server for itself, and has its parent's observers.
 *     What was still to be delivered, and message ports, stay its parent's. posix_spawn and vfork wait for
 *     nothing. A child that was made past the C library's fork, by a system call, calls nothing here, and
 *     one that was made while another thread was loading code should not be the first to register fonts:
 *     the C library's loader may stay locked in it.
 *
 * Fonts stand in two registers: the process's own, which only this process sees, and the shared
 * one. Every function takes a scope word that says which of them is meant.
 */
#ifndef VELLUM_VELLUM_H
#define VELLUM_VELLUM_H

#include <vellum/values.h>

#define VL_EXPORT VAL_EXPORT
#define VL_NOEXCEPT VAL_NOEXCEPT

#ifdef __cplusplus
extern "C" {
#endif

/* ---- the words ------------------------------------------------------------------------------- */

/* Which register; and how a change is made. Bits. */
typedef uint32_t VLScope;
enum {
    kVLScopeProcess = 0x1,      /* the process's own register */
    kVLScopeUser = 0x2,         /* the shared register; kept for the user across restarts */
    kVLScopeSession = 0x4,      /* the shared register; a change lasts for this session */
    kVLScopeAll = 0x7,          /* for queries */
    kVLScopeDurable = 0x4000,   /* a change is on disk before the call returns */
    kVLScopeSilent = 0x40000000 /* post no notification of this change */
};
#define kVLScopeLegacyTold 0x80000000u /* the legacy font service has heard of this change already */

/* Second word of the queries that may activate a missing font. Either bit forbids it. */
typedef uint32_t VLActivationOptions;
enum { kVLActivationNotFromProviders = 0x10000, kVLActivationNotFromSearch = 0x20000 };

/* Flags of a font file, given when it is registered, and of a face, as its property says. Bits. */
typedef uint32_t VLFontFlags;
enum {
    kVLFontFlagSystem = 0x8,         /* one of the system's fonts */
    kVLFontFlagCritical = 0x10,      /* much of the system depends on it; of the system's fonts alone */
    kVLFontFlagSuperCritical = 0x20, /* all of the system depends on it; of critical fonts alone */
    kVLFontFlagHidden = 0x40,        /* not for people to choose */
    kVLFontFlagUserInterface = 0x80, /* what the system's own interface is set in */
    kVLFontFlagCopyToStable = 0x100, /* copy the file to stable storage first */
    kVLFontFlagLocalVolume = 0x200,
    kVLFontFlagRootVolume = 0x400,
    kVLFontFlagLastResort = 0x1000, /* draws what no other font has */
    kVLFontFlagKeyboard = 0x2000    /* draws keyboards */
};

/* ---- property keys --------------------------------------------------------------------------- */

/*
 * Keys of property dictionaries and of requests; each is a ValString. The comment names the type of
 * the value.
 */
VL_EXPORT extern const ValString *const kVLFontPropertyName;          /* ValString: PostScript name */
VL_EXPORT extern const ValString *const kVLFontPropertyFamilyName;    /* ValString */
VL_EXPORT extern const ValString *const kVLFontPropertyFullName;      /* ValString */
VL_EXPORT extern const ValString *const kVLFontPropertySubfamilyName; /* ValString: style name */
VL_EXPORT extern const ValString *const kVLFontPropertyVersionName;   /* ValString */
VL_EXPORT extern const ValString *const kVLFontPropertyCopyrightName; /* ValString */
VL_EXPORT extern const ValString *const kVLFontPropertyInstanceName;  /* ValString */
/* ValDictionary, from language (a canonical identifier) to ValDictionary, from key of names to ValString */
VL_EXPORT extern const ValString *const kVLFontPropertyLocalizedNames;
VL_EXPORT extern const ValString *const kVLFontPropertyTraits;        /* ValDictionary */
VL_EXPORT extern const ValString *const kVLFontPropertyURL;           /* ValURL */
VL_EXPORT extern const ValString *const kVLFontPropertyUUID;          /* ValUUID */
VL_EXPORT extern const ValString *const kVLFontPropertyBookmark;      /* ValData */
VL_EXPORT extern const ValString *const kVLFontPropertyCharacterSet;  /* ValCharacterSet */
VL_EXPORT extern const ValString *const kVLFontPropertyVariationAxes; /* ValArray of ValDictionary */
VL_EXPORT extern const ValString *const kVLFontPropertyVariations; /* ValDictionary: axis name to Float64 */
VL_EXPORT extern const ValString *const kVLFontPropertySupportedLanguages; /* ValArray of ValString */
VL_EXPORT extern const ValString *const kVLFontPropertyDesignLanguages;    /* ValArray of ValString */
VL_EXPORT extern const ValString *const kVLFontPropertyEnabled;            /* ValNumber, SInt32: 1 or 0 */
VL_EXPORT extern const ValString *const kVLFontPropertyPriority;           /* ValNumber, SInt64 */
VL_EXPORT extern const ValString *const kVLFontPropertyFormat; /* ValNumber, SInt32: kVLFontFormat... */
VL_EXPORT extern const ValString
    *const kVLFontPropertyStringEncoding; /* ValNumber, SInt32: ValStringEncoding */
VL_EXPORT extern const ValString *const kVLFontPropertyIgnoreScriptAnalysis; /* ValBoolean */
VL_EXPORT extern const ValString *const kVLFontPropertyFontRef;              /* ValNumber, SInt32 */
VL_EXPORT extern const ValString *const kVLFontPropertyDirectory;            /* ValURL */
VL_EXPORT extern const ValString *const kVLFontPropertyScope;                /* ValNumber, SInt64 */
VL_EXPORT extern const ValString *const kVLFontPropertyFlags;                /* ValNumber, SInt32 */
VL_EXPORT extern const ValString *const kVLFontPropertyUnicodeRanges;        /* ValArray of 4 ValNumber */
VL_EXPORT extern const ValString *const kVLFontPropertyManufacturerName; /* ValString, in localized names */
VL_EXPORT extern const ValString *const kVLFontPropertyDesignerName;     /* ValString, in localized names */
VL_EXPORT extern const ValString *const kVLFontPropertyPrimaryLanguage;  /* ValString */

/* Keys of one variation axis's dictionary. */
VL_EXPORT extern const ValString
    *const kVLVariationAxisIdentifier; /* ValNumber, SInt32: the tag's four bytes, big-endian */
VL_EXPORT extern const ValString *const kVLVariationAxisName;         /* ValString */
VL_EXPORT extern const ValString *const kVLVariationAxisMinValue;     /* ValNumber, Float64 */
VL_EXPORT extern const ValString *const kVLVariationAxisMaxValue;     /* ValNumber, Float64 */
VL_EXPORT extern const ValString *const kVLVariationAxisDefaultValue; /* ValNumber, Float64 */

/* Keys of a traits dictionary. */
VL_EXPORT extern const ValString *const kVLFontTraitSymbolic; /* ValNumber, SInt32: bits */
VL_EXPORT extern const ValString *const kVLFontTraitWeight;   /* ValNumber, Float32: -1 to 1, 0 regular */
VL_EXPORT extern const ValString *const kVLFontTraitWidth;    /* ValNumber, Float32: negative condensed */
VL_EXPORT extern const ValString *const kVLFontTraitSlant;    /* ValNumber, Float32: angle / 180 degrees */

/* Bits of kVLFontTraitSymbolic; the four highest are the class of the face, as sFamilyClass of OpenType's
 * OS/2 table numbers it in its high byte: 1 to 5 and 7 have serifs, 8 has none, 9 is ornamental, 10 a
 * script, 12 symbolic, 0 is not known. */
enum {
    kVLFontTraitItalic = 0x1,
    kVLFontTraitBold = 0x2,
    kVLFontTraitExpanded = 0x20,
    kVLFontTraitCondensed = 0x40,
    kVLFontTraitMonospace = 0x400
};

/*
 * Font URLs. A font file's URL names the file; "#" and parameters behind it name one face in it:
 * file:///usr/share/fonts/Some.ttc#postscript-name=Some-Bold. A font in memory is named by
 * file://inMemory_0x...#postscript-name=...
 */
VL_EXPORT extern const ValString *const kVLFontURLScheme;                     /* "file" */
VL_EXPORT extern const ValString *const kVLFontURLFragmentSeparator;          /* "#" */
VL_EXPORT extern const ValString *const kVLFontURLAdditionalEscapedChars;     /* "#" */
VL_EXPORT extern const ValString *const kVLFontURLParameterSeparator;         /* ";" */
VL_EXPORT extern const ValString *const kVLFontURLParameterKeyValueSeparator; /* "=" */
VL_EXPORT extern const ValString *const kVLFontURLParameterPostScriptName;    /* "postscript-name" */
VL_EXPORT extern const ValString *const kVLFontURLParameterFamilyName;        /* "family-name" */
VL_EXPORT extern const ValString *const kVLFontURLParameterFullName;          /* "full-name" */
VL_EXPORT extern const ValString *const kVLFontURLParameterSubfamilyName;     /* "subfamily-name" */
VL_EXPORT extern const ValString *const kVLFontURLParameterVariationPrefix;   /* "var:" and an axis */

/* Values of kVLFontPropertyFormat. */
enum {
    kVLFontFormatUnrecognized = 0,
    kVLFontFormatOpenTypePostScript = 1,
    kVLFontFormatOpenTypeTrueType = 2,
    kVLFontFormatTrueType = 3,
    kVLFontFormatPostScript = 4,
    kVLFontFormatBitmap = 5
};

/* ---- finding fonts --------------------------------------------------------------------------- */

/* The font with a PostScript, full or family name, in this order; the best when several have it. */
VL_EXPORT const ValURL *VLCopyFontWithName(const ValString *name, VLScope scope,
                                           VLActivationOptions activation) VL_NOEXCEPT;

/*
 * The best font for a request: a dictionary from property key to the value that it must have. An empty one
 * is answered by every font.
 *
 *  - Names are found whatever their letter case. A PostScript name that no font has is taken for a
 * family's, a full or a subfamily name, in this order.
 *  - A file's URL: the fonts in it; a folder's: the fonts in all files below it.
 *  - Traits: a dictionary of those that must be there. Values may be 0.0001 off, every bit of
 *    kVLFontTraitSymbolic must be set.
 *  - Characters: a character set, all of which the font must have.
 *  - Languages: one identifier, or an array or a set of those that must all be supported.
 *  - Variation axes: exactly these. Variations: any, of a font that has some.
 *  - Version and copyright: one of the font's names, to the letter.
 *  - By any other key, nothing is found.
 *
 * Fonts come in this order: by family, those that carry a foundry's name after the others; plain ones
 * before italic, bold, expanded, condensed and monospaced ones; then the nearer to regular in weight,
 * slant, width; serif and sans-serif designs before symbols, and unknown ones last; then by subfamily; then
 * by the order of registration.
 *
 * When no register has a font, and `scope` has kVLScopeProcess, one may be activated on demand, unless
 * `activation` has a bit set.
 */
VL_EXPORT const ValURL *VLCopyFontWithProperties(const ValDictionary *request, VLScope scope,
                                                 VLActivationOptions activation) VL_NOEXCEPT;

/* All fonts for a request, an array of font URLs, best first. */
VL_EXPORT const ValArray *VLCopyFontsWithProperties(const ValDictionary *request, VLScope scope,
                                                    VLActivationOptions activation) VL_NOEXCEPT;

/*
 * The best font that draws a character (a Unicode scalar value). `reserved` is carried and not read. A
 * character that no font was found for is remembered by the calling thread, whatever the scope, and not
 * looked for again until a font changes anywhere.
 */
VL_EXPORT const ValURL *VLCopyFontForCharacter(uint32_t character, VLScope scope,
                                               uint32_t reserved) VL_NOEXCEPT;

/*
 * How an answer came about. Every function of this section, once it has its answer and before it returns,
 * tells the calling thread's callback: a dictionary with what was asked, the stages that the question went
 * through (which index had how many fonts, which font was dropped by which property, what put one font
 * before another, which register was asked) and the answer; docs/trace.md lists them. It is borrowed, and
 * valid during the call. The callback may ask for fonts; of what it asks meanwhile, it is not told.
 *
 * One callback a thread; null ends it. With VELLUM_TRACE=json:PATH in a process's environment, all of its
 * lookups are also written to that file, a line each.
 */
typedef void (*VLLookupTraceCallback)(const ValDictionary *lookup, void *context);
VL_EXPORT void VLSetLookupTraceCallback(VLLookupTraceCallback callback, void *context) VL_NOEXCEPT;

/* ---- listings -------------------------------------------------------------------------------- */

/* All family names, sorted; all PostScript names, sorted; all font URLs. Arrays, each item once. */
VL_EXPORT const ValArray *VLCopyAvailableFamilyNames(VLScope scope) VL_NOEXCEPT;
VL_EXPORT const ValArray *VLCopyAvailableFontNames(VLScope scope) VL_NOEXCEPT;
VL_EXPORT const ValArray *VLCopyAvailableFontURLs(VLScope scope) VL_NOEXCEPT;

/* The family names of the fonts that support a language (a canonical identifier, compared exactly). */
VL_EXPORT const ValArray *VLCopyFamilyNamesForLanguage(const ValString *language, VLScope scope,
                                                       uint32_t reserved) VL_NOEXCEPT;

/* ---- properties ------------------------------------------------------------------------------ */

/*
 * The properties of one font: a dictionary that holds those of the asked keys (a set) that the font
 * has a value for; null when that is none. Disabled fonts answer only when kVLFontPropertyEnabled
 * is among the keys.
 */
VL_EXPORT const ValDictionary *VLCopyPropertiesForFont(const ValURL *font, const ValSet *keys,
                                                       VLScope scope) VL_NOEXCEPT;

/* The same for several fonts: a dictionary from font URL to property dictionary. */
VL_EXPORT const ValDictionary *VLCopyPropertiesForFonts(const ValArray *fonts, const ValSet *keys,
                                                        VLScope scope) VL_NOEXCEPT;

/* The same for all fonts: an array of property dictionaries, one a face, in order of registration. */
VL_EXPORT const ValArray *VLCopyPropertiesForAllFonts(const ValSet *keys, VLScope scope) VL_NOEXCEPT;

/* One property of several fonts: a dictionary from font URL to value. */
VL_EXPORT const ValDictionary *VLCopyPropertyForFonts(const ValArray *fonts, const ValString *key,
                                                      VLScope scope) VL_NOEXCEPT;

/*
 * What describes a font for registration: those of nineteen properties that it has, of the face that the
 * URL names, or of the file's first. It need not be registered. `useFontInfo` takes them from a font-info
 * file where there is one for the file as it is.
 */
VL_EXPORT const ValDictionary *VLCopyRegistrationInfoForFont(const ValURL *font,
                                                             bool useFontInfo) VL_NOEXCEPT;

/*
 * A summary for diagnosis. Never null but when memory is exhausted. Under the number 1 (SInt32) stands an
 * array with nine properties of each font of the process's register; beside it, what the shared register
 * answers to `query`.
 */
VL_EXPORT const ValDictionary *VLExperimentalDataFunnel(const ValDictionary *query,
                                                        VLScope scope) VL_NOEXCEPT;

/* Which registers have a font: kVLScopeProcess and the bits that the shared register answers. */
VL_EXPORT VLScope VLGetScopeForFont(const ValURL *font) VL_NOEXCEPT;

/* Take any arguments and do nothing, on purpose: properties come from the fonts themselves. */
VL_EXPORT void VLSetPropertiesForFonts(const ValArray *fonts, const ValDictionary *properties,
                                       VLScope scope) VL_NOEXCEPT;
VL_EXPORT void VLRemovePropertiesForFonts(const ValArray *fonts, const ValSet *keys,
                                          VLScope scope) VL_NOEXCEPT;

/* ---- changes --------------------------------------------------------------------------------- */

/*
 * Registers font files (file URLs), each whole, every face of it: with the shared register when the
 * scope has kVLScopeUser or kVLScopeSession, else with the process's own; never with both. URLs that are no
 * file's are passed over. True when all the others were registered. Those that were not are handed out as
 * *errors, an array that the caller owns, of absolute URLs without fragments; `errors` may be null. It is
 * null when all went well, and when the register refused the change as a whole, as the shared one does
 * without a font server; all of them are handed back when the scope names no register. A file is refused
 * when it is registered already, when it is no font or cannot be read. The others are registered all the
 * same.
 */
VL_EXPORT bool VLRegisterFonts(const ValArray *urls, VLFontFlags flags, VLScope scope,
                               const ValArray **errors) VL_NOEXCEPT;
VL_EXPORT bool VLRegisterFont(const ValURL *url, VLFontFlags flags, VLScope scope) VL_NOEXCEPT;

/* Takes font files out again. `reserved` is not read. A file that was not registered is no error. */
VL_EXPORT bool VLUnregisterFonts(const ValArray *urls, uint32_t reserved, VLScope scope,
                                 const ValArray **errors) VL_NOEXCEPT;
VL_EXPORT bool VLUnregisterFont(const ValURL *url, uint32_t reserved, VLScope scope) VL_NOEXCEPT;

/*
 * Brings fonts back, and hides them from every query, in each register that the scope names; a URL's
 * fragment picks one face of a file.
 */
VL_EXPORT void VLEnableFonts(const ValArray *urls, VLFontFlags flags, VLScope scope) VL_NOEXCEPT;
VL_EXPORT void VLDisableFonts(const ValArray *urls, VLFontFlags flags, VLScope scope) VL_NOEXCEPT;

/*
 * Directories belong to the shared register: false unless the scope's low three bits are exactly
 * kVLScopeUser. `options` bit 0 leaves out what lies in folders below; the rest is reserved.
 */
VL_EXPORT bool VLRegisterFontDirectory(const ValURL *directory, VLFontFlags flags, uint32_t options,
                                       VLScope scope) VL_NOEXCEPT;
VL_EXPORT bool VLUnregisterFontDirectory(const ValURL *directory, uint32_t reserved,
                                         VLScope scope) VL_NOEXCEPT;

/*
 * Fonts in memory, always in the process's own register: false unless the scope has
 * kVLScopeProcess. The buffer is retained. Of a buffer that holds several faces the first counts;
 * one without a PostScript name is refused; equal bytes are registered once. `legacyContainer` is
 * the id under which the legacy font service knows the buffer, 0 when it does not.
 */
VL_EXPORT bool VLRegisterDataFont(const ValData *data, uint32_t legacyContainer, VLFontFlags flags,
                                  VLScope scope) VL_NOEXCEPT;
VL_EXPORT bool VLUnregisterDataFont(const ValData *data, uint32_t reserved, VLScope scope) VL_NOEXCEPT;

/* The URL of a registered buffer, or, when that is null, of a legacy font id. */
VL_EXPORT const ValURL *VLCopyFontURLForDataFont(const ValData *data, uint32_t legacyFont) VL_NOEXCEPT;

/* The legacy font service's id of a font in memory, or 0. */
VL_EXPORT uint32_t VLGetDataFontFountFont(const ValURL *font) VL_NOEXCEPT;

/*
 * The table of registration functions, for a framework that loads the library by name. Its order is
 * fixed. enable_font and disable_font are reached through it alone.
 */
typedef struct {
    bool (*register_font)(const ValURL *, VLFontFlags, VLScope);
    bool (*unregister_font)(const ValURL *, uint32_t, VLScope);
    bool (*register_data_font)(const ValData *, uint32_t, VLFontFlags, VLScope);
    bool (*unregister_data_font)(const ValData *, uint32_t, VLScope);
    bool (*register_fonts)(const ValArray *, VLFontFlags, VLScope, const ValArray **);
    bool (*unregister_fonts)(const ValArray *, uint32_t, VLScope, const ValArray **);
    void (*enable_font)(const ValURL *, VLFontFlags, VLScope);
    void (*disable_font)(const ValURL *, VLFontFlags, VLScope);
    bool (*register_font_directory)(const ValURL *, VLFontFlags, uint32_t, VLScope);
    bool (*unregister_font_directory)(const ValURL *, uint32_t, VLScope);
    uint32_t (*get_directory_flags)(const ValURL *);
    uint32_t (*get_font_flags_for_dir_flags)(uint32_t);
} VLFunctions;
VL_EXPORT const VLFunctions *VLGetFunctions(void) VL_NOEXCEPT;

/* ---- small utilities ------------------------------------------------------------------------- */

/*
 * The volume that holds a directory: kVLFontFlagLocalVolume unless it lies on another machine,
 * kVLFontFlagRootVolume when it is the one that holds "/". 0 for a volume of another machine, and on
 * any failure.
 */
VL_EXPORT uint32_t VLGetDirectoryFlags(const ValURL *directory) VL_NOEXCEPT;

/* The directory flags that a font file in that directory inherits: & 0x603. */
VL_EXPORT uint32_t VLGetFontFlagsForDirFlags(uint32_t directoryFlags) VL_NOEXCEPT;

/*
 * The names of the fonts that everybody asks for, user interface and fallback: an array of
 * ValStrings of the library's own, their number in *count unless that is null.
 */
VL_EXPORT const ValString *const *VLGetCommonFontNames(size_t *count) VL_NOEXCEPT;

/* ---- hearing of changes ---------------------------------------------------------------------- */

/* What a change of the available fonts is called inside a process, and between processes. */
VL_EXPORT extern const ValString *const kVLFontsChangedNotification;
VL_EXPORT extern const ValString *const kVLFontsChangedDistributedNotification;

/*
 * The user info of a notification has one of these keys, with an array of ValStrings: the URLs of the faces
 * that became available or went away, as texts. An array without any means that more changed than is told,
 * because nobody listened for too long: ask for the fonts again.
 */
VL_EXPORT extern const ValString *const kAvailableFontURLsAddedKey;
VL_EXPORT extern const ValString *const kAvailableFontURLsRemovedKey;

/*
 * Called on the main run loop with a change of the available fonts, before the process's own
 * notification goes out: centre, observer and object are null, the name is
 * "LDFontManagerFontChangedNotification", the user info says which fonts came or went; it is borrowed for
 * the call. The callback may call the library. An exception must not leave it: that ends the process. Of
 * changes that nobody takes, 4,096 are kept one by one; what comes then is joined by font, what went before
 * what came.
 */
typedef void (*VLFontsChangedCallback)(void *center, void *observer, const ValString *name,
                                       const void *object, const ValDictionary *userInfo);

/* Installs the callback, once: a second one is ignored, and so is any when `options` is not 0. */
VL_EXPORT void VLSetFrameworkFontChangedCallback(uint32_t options,
                                                 VLFontsChangedCallback callback) VL_NOEXCEPT;

/*
 * Observers of the process's own notification: called on the main run loop after the framework's
 * callback, in the order in which they were added, with the centre, which is not to be looked into,
 * and with the observer as it was added. `observer` names the callback and is not looked into; it may
 * be null, and one name may be added more than once. False when memory is exhausted or the callback
 * is null.
 *
 * After its removal an observer is not called any more; a call that another thread has begun may
 * still be running.
 */
VL_EXPORT bool VLAddFontsChangedObserver(void *observer, VLFontsChangedCallback callback) VL_NOEXCEPT;
VL_EXPORT void VLRemoveFontsChangedObserver(void *observer) VL_NOEXCEPT;

/*
 * The main run loop is GLib's default context: a program that runs it, as GTK and Qt do on Linux, hears
 * of changes without more ado. A program with a loop of its own waits until the descriptor is readable
 * and then calls VLDeliverNotifications, always on the same thread; what is posted meanwhile makes the
 * descriptor readable again. The descriptor belongs to the library and stays the same; -1 when there is
 * none to be had. A program that does neither never hears of a change.
 *
 * A process that is forked hears nothing of what its parent was still to hear, and of what other processes
 * change from its first call for shared fonts on. It asks for its descriptor before it waits for the first
 * time: the number is its parent's, what is behind it is not.
 */
VL_EXPORT int VLGetNotificationDescriptor(void) VL_NOEXCEPT;
VL_EXPORT void VLDeliverNotifications(void) VL_NOEXCEPT;

/* ---- the font server ------------------------------------------------------------------------- */

/*
 * The shared register is a font server's, one for each user, and every call whose scope has kVLScopeUser or
 * kVLScopeSession may wait for it: 3 seconds to reach it, 3 until it takes a question, 4 for the answer, 60
 * for that to a change. One that was silent for so long is not asked again for 5 seconds; meanwhile it
 * counts as one that does not answer. When the server has started anew, a question is sent again at once,
 * twice at the most.
 *
 * Without an answer, queries find nothing in the shared register and changes of it fail, as rule 2 says.
 * The first of the VLCopyAvailable... functions, or VLCopyFamilyNamesForLanguage, that gets nothing from
 * the server makes a register of the system's fonts in this process, which is asked in the server's place
 * from then on, changed by nobody else, and never left again. The first call of all may take 2 seconds more
 * where a server is installed that does not answer.
 *
 * With the environment variable VELLUM_IGNORE_SERVER set to "1" or "YES" when the shared register is first
 * needed, the process has such a register from the beginning, and never asks the server for anything.
 */

/*
 * Whether a font server answers this user now. Nothing else is asked or made: a program that does without
 * the shared register where there is none looks here first, and sets VELLUM_IGNORE_SERVER before it asks
 * for fonts. It is looked for also where that is set. May take 3 seconds.
 */
VL_EXPORT bool VLFontServerAnswers(void) VL_NOEXCEPT;

/*
 * The process id of the font server that answers this user now, as this process sees it; 0 when there is
 * none. May take 3 seconds.
 */
VL_EXPORT int32_t VLGetFontServerProcess(void) VL_NOEXCEPT;

/* ---- the index of font files ------------------------------------------------------------------ */

/*
 * How the index of the font files in the user's folders is: a dictionary with the strings "state"
 * ("starting", "crawling", "idle", or "no room" while it cannot be written), the array of strings "roots",
 * and the numbers "files" and "faces" (in the index), "folders-read" and "folders-waiting" (in the crawl
 * that is under way), "files-read", "changes" and "rebuilds" (since the service began), "process" and
 * "crawler" (process ids). Owned by the caller. With a patience, in milliseconds up to 3,000, it is that of
 * when the index is at rest and "changes" is another than the given one, if that comes in time. Null when
 * there is no such service, and when memory is exhausted.
 */
VL_EXPORT const ValDictionary *VLCopyFontIndexStatus(uint32_t patience, uint32_t changes) VL_NOEXCEPT;

/*
 * The font files that a query finds, by the time of their last change: an array of dictionaries with the
 * URL "url", the string "type" (a type identifier) and the number "modified" (seconds since 1970). A query
 * is one to four of these clauses, with " && " between them, each attribute once, values without escapes:
 *
 *     com_orrery_fount_name_postscript == "VALUE"      com_orrery_fount_name_family == "VALUE"
 *     com_orrery_fount_name_style == "VALUE"           com_orrery_fount_name_full == "VALUE"
 *
 * Any other text finds nothing: an empty array. Owned by the caller. Waits for five seconds at the most.
 * Null for null or an empty text, without a service or an answer in time, and when memory is exhausted.
 */
VL_EXPORT const ValArray *VLCopyIndexedFontFiles(const ValString *query) VL_NOEXCEPT;

/* Has every font file be read again, soon. False when there is no such service. */
VL_EXPORT bool VLRebuildFontIndex(void) VL_NOEXCEPT;

/* ---- fonts on demand ------------------------------------------------------------------------- */

/* Whether missing fonts are found and activated. 0 means: nothing was set. */
typedef uint32_t VLAutoActivationSetting;
enum {
    kVLAutoActivationDefault = 0,
    kVLAutoActivationDisable = 1,
    kVLAutoActivationEnable = 2,
    kVLAutoActivationAsk = 3
};

/*
 * The fonts that a query for a request would activate if no register had one and the user allowed it: an
 * array of face URLs (ValURL), best first, owned by the caller. They are those of the first provider that
 * offers some that fit, else those of the first folder with some, of the index of font files; either is
 * left out by its option. Faces that a register holds disabled are none. Nothing is activated, and nobody
 * is asked for consent. Takes as long as the providers and the index do: a provider up to six minutes, the
 * index five seconds. Null for none, for null and for what is no dictionary, and when memory is exhausted.
 */
VL_EXPORT const ValArray *VLCopyActivatableFonts(const ValDictionary *request,
                                                 VLActivationOptions options) VL_NOEXCEPT;

/*
 * The setting of one application, by its identifier (any text but the empty one). "com.orrery.Laydown"
 * stands for the setting for all; null for the calling application, which is the one that
 * "BundleIdentifier" in the Info.vlist of its bundle names, or else the one that Flatpak or the desktop
 * started it as. A setting of an application goes before the setting for all.
 *
 * Get answers Default where nothing is set, and Disable for null in a program that is no application. It
 * reads the user's preferences, $XDG_CONFIG_HOME/vellum/com.orrery.Fount.vlist, each time.
 *
 * Set is on disk when it returns; Default, and what is none of the four, removes what was set. Where
 * nothing can be kept - the disk is full, there is no home, null in a program that is no application -
 * nothing changes, and the system's log says why; Get tells.
 */
VL_EXPORT VLAutoActivationSetting VLGetAutoActivationSetting(const ValString *application) VL_NOEXCEPT;
VL_EXPORT void VLSetAutoActivationSetting(const ValString *application,
                                          VLAutoActivationSetting setting) VL_NOEXCEPT;

/*
 * Whether the calling process is a service of the system: started by systemd as one, with no display and no
 * terminal. No font is searched for a process that is, unless a function of the same name that the program
 * itself exports says otherwise. Nothing is remembered; false when memory is exhausted.
 */
VL_EXPORT bool GetApplicationIsDaemon(void) VL_NOEXCEPT;

/*
 * A message port of a font provider: one's own, or the way to another's. It is a value: retained and
 * released like one, on any thread, and held by any container.
 */
typedef struct VLMessagePort VLMessagePort;

/*
 * Answers a request for fonts: the attributes sought (borrowed for the call; null when the request says
 * none) and the process that seeks them, as it calls itself (0 when it does not). Returns a value that the
 * caller releases, an array of fonts, or null. Called on the main run loop, one call after the other; it
 * may call the library, and give its port back. An exception must not leave it: that ends the process.
 */
typedef const void *(*VLFontProviderCallback)(void *context, const ValDictionary *attributes,
                                              int32_t process);

/*
 * Announces this process to the font server as a provider of fonts, until the port's last reference is
 * given back. A server that starts later, or anew, hears of it too; that there is none just now is no
 * failure. The port is owned by the caller. Null where the server is ignored, where a register of the
 * process's own has taken its place, for a null callback, and when the port cannot be opened: there is no
 * folder for sockets, or memory or descriptors are exhausted.
 *
 * Requests are answered on the main run loop; a program that runs none (see VLGetNotificationDescriptor) is
 * listed all the same, and keeps those who ask it waiting until they give up.
 *
 * From the moment that the last reference is given back nobody can connect, who still waits for an answer
 * is told that the port is gone, and the callback is not called again; giving back may wait 10 seconds for
 * the server. `release(context)`, unless it is null, is called once whatever happens: when the port is gone
 * and no call of the callback is running any more, on whatever thread saw to that; and at once when there
 * is no port.
 *
 * In a child of fork the port is the parent's, who goes on answering: nothing is withdrawn or released when
 * the child gives it back or ends. A child that has fonts to give makes a port of its own.
 */
VL_EXPORT VLMessagePort *VLCreateFontProviderLocalPort(VLFontProviderCallback callback, void *context,
                                                       void (*release)(void *context)) VL_NOEXCEPT;

/*
 * The ports of the providers that answer now, an array owned by the caller, in the order in which they were
 * announced: this process's own are among them. Empty when there are none; null where the server is
 * ignored, or a register of the process's own has taken its place. Takes 3 seconds at the most for each
 * provider that has no room for another connection. A provider that is not visible from this process,
 * because it lives in another container for instance, is left out.
 */
VL_EXPORT const ValArray *VLCopyFontProviderRemotePorts(void) VL_NOEXCEPT;

/* The process that answers at a port, of one's own that which made it; 0 for null. */
VL_EXPORT int32_t VLGetMessagePortProcess(const VLMessagePort *port) VL_NOEXCEPT;

/* What a port is called in its process: of a provider, a UUID as text. Owned by the caller; null for null.
 */
VL_EXPORT const ValString *VLCopyMessagePortName(const VLMessagePort *port) VL_NOEXCEPT;

/* ---- looking into a file --------------------------------------------------------------------- */

/*
 * The type identifier of a file, "public.truetype-ttf-font" for instance, by its content; null when
 * it cannot be read or is of no type known here. Nothing is registered.
 */
VL_EXPORT const ValString *VLCopyTypeIdentifier(const ValURL *file) VL_NOEXCEPT;

/*
 * The tags of the tables of the font that a URL names, an array of four-character strings in the
 * order of the file's table directory; of the first face when the URL names several. Null for a
 * font without such tables. Nothing is registered.
 */
VL_EXPORT const ValArray *VLCopyTableTagsForFont(const ValURL *font) VL_NOEXCEPT;

/*
 * Every name of one kind that the face which a URL names goes by, and can be found by: an array of
 * ValStrings, the preferred ones first. `key` is one of the keys of names, from kVLFontPropertyName to
 * kVLFontPropertyCopyrightName; null for another, and when there is no such face or name. Nothing is
 * registered.
 */
VL_EXPORT const ValArray *VLCopyNamesForFont(const ValURL *font, const ValString *key) VL_NOEXCEPT;

/*
 * A font-info file for a font file: the properties of all of its faces, computed now so that nobody has to
 * compute them again. Returns its content, and in *name (an owned ValString; set on success only) the name
 * under which it is looked for in the folder FontInfo of the framework's resources. Null when the file is
 * no font, cannot be read just now, or would need more than 64 MiB. Nothing is registered.
 */
VL_EXPORT const ValData *VLCreateFontInfoForFontFile(const ValURL *file,
                                                     const ValString **name) VL_NOEXCEPT;

/* ---- languages ------------------------------------------------------------------------------- */

/*
 * The languages of which it is known what characters they are written with: an array of canonical
 * identifiers (BCP 47, without the language's principal region), sorted.
 */
VL_EXPORT const ValArray *VLCopyExemplarLanguages(void) VL_NOEXCEPT;

/*
 * The characters that a language is written with, by the locale database that the library was built with.
 * Any spelling of the language will do, "ja_JP.UTF-8" too. Null when they are not known.
 */
VL_EXPORT const ValCharacterSet *VLCopyExemplarCharacterSet(const ValString *language) VL_NOEXCEPT;

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* VELLUM_VELLUM_H */

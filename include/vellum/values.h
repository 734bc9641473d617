/* SPDX-License-Identifier: MIT */
/*
 * vellum/values.h - the reference-counted values that cross Vellum's interface.
 *
 * Rules that hold for every function here, unless it says otherwise:
 *
 *  1. Ownership. A function with Create or Copy in its name returns a reference that the caller
 *     owns and gives back with ValRelease. A function with Get returns a borrowed pointer, which
 *     lives as long as the value that it came from.
 *  2. Mutability. `const ValX *` is an immutable value, shared freely. A CreateMutable function
 *     returns `ValX *`, which its creator may change until it is first seen by anybody else; it is
 *     passed on as `const ValX *` and never changed again.
 *  3. Null. Null is accepted wherever a value is expected and means "no value": it has length and
 *     count 0, holds nothing, equals only null. What is made from null is null.
 *  4. Errors. Bad arguments and exhausted memory give null, false or 0; nothing is logged, nothing
 *     is thrown, and a value that was to be changed is left as it was.
 *  5. Threads. Any thread may retain, release and read any value at any time. A value under
 *     construction belongs to one thread.
 *  6. Text is UTF-8; lengths and offsets of text are in bytes unless a name says UTF16. Code points
 *     and bit positions are unsigned 32-bit numbers.
 */
#ifndef VELLUM_VALUES_H
#define VELLUM_VALUES_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#define VAL_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
#define VAL_NOEXCEPT noexcept
extern "C" {
#else
#define VAL_NOEXCEPT
#endif

typedef struct ValString ValString;
typedef struct ValNumber ValNumber;
typedef struct ValBoolean ValBoolean;
typedef struct ValData ValData;
typedef struct ValUUID ValUUID;
typedef struct ValURL ValURL;
typedef struct ValArray ValArray;
typedef struct ValDictionary ValDictionary;
typedef struct ValSet ValSet;
typedef struct ValCharacterSet ValCharacterSet;

/* ---- every value ----------------------------------------------------------------------------- */

/* The kind of a value. Numbers are stable; values that the library keeps to itself are Other. */
typedef uint32_t ValType;
enum {
    kValTypeNone = 0, /* null */
    kValTypeString = 1,
    kValTypeNumber = 2,
    kValTypeBoolean = 3,
    kValTypeData = 4,
    kValTypeUUID = 5,
    kValTypeURL = 6,
    kValTypeArray = 7,
    kValTypeDictionary = 8,
    kValTypeSet = 9,
    kValTypeCharacterSet = 10,
    kValTypeOther = 11
};

/* Adds one reference and returns `value`. */
VAL_EXPORT const void *ValRetain(const void *value) VAL_NOEXCEPT;

/* Gives one reference back; the last one frees the value. */
VAL_EXPORT void ValRelease(const void *value) VAL_NOEXCEPT;

/* The kind of a value; None for null. */
VAL_EXPORT ValType ValGetType(const void *value) VAL_NOEXCEPT;

/*
 * True when both are the same object, both null, or of one kind and equal: strings and data by
 * bytes, numbers by numeric value whatever their type (not-a-number equals itself), URLs by their
 * absolute form, containers by their members (sets and dictionaries in any order) when they use the
 * same callbacks. A boolean equals no number. Containers nested more than 1,000 deep equal only
 * themselves.
 */
VAL_EXPORT bool ValEqual(const void *a, const void *b) VAL_NOEXCEPT;

/*
 * Equal values have equal hashes, in every process of one build; but for addresses: of items under
 * raw callbacks, and of values of type Other. Null hashes to 0.
 */
VAL_EXPORT uint64_t ValHash(const void *value) VAL_NOEXCEPT;

/* A text for logs and debuggers; its form may change between releases. Never null but for memory. */
VAL_EXPORT const ValString *ValCopyDescription(const void *value) VAL_NOEXCEPT;

/* ---- strings --------------------------------------------------------------------------------- */

/*
 * Text encodings by number. 0 to 32 are the script codes of platform 1 in OpenType's name and cmap
 * tables; those not listed are understood as far as the C library's iconv understands them.
 */
typedef uint32_t ValStringEncoding;
enum {
    kValStringEncodingRoman = 0,
    kValStringEncodingJapanese = 1,
    kValStringEncodingTraditionalChinese = 2,
    kValStringEncodingKorean = 3,
    kValStringEncodingSimplifiedChinese = 25,
    kValStringEncodingUnicode = 0x100, /* as an answer: "Unicode"; as a form of bytes: UTF-16BE */
    kValStringEncodingUTF16BE = 0x101,
    kValStringEncodingUTF32BE = 0x102,
    kValStringEncodingUTF8 = 0x103,
    kValStringEncodingASCII = 0x104,
    kValStringEncodingLatin1 = 0x105
};

/* How two texts are compared or one is sought in another; bits. 0 compares code points exactly. */
typedef uint32_t ValCompareOptions;
enum {
    kValCompareExact = 0,
    kValCompareCaseInsensitive = 1, /* Unicode case folding, the same in every locale */
    kValCompareNumeric = 2,         /* runs of the digits 0 to 9 compare by the number they write */
    kValCompareLocalized = 4,       /* collated by the user's LC_COLLATE */
    kValCompareBackwards = 8        /* searches only: find the last occurrence */
};

/* A stretch of a string, in bytes of its UTF-8 form. */
typedef struct {
    size_t offset;
    size_t length;
} ValRange;

/* From `length` bytes of UTF-8. Null when the bytes are not valid UTF-8 (or `bytes` is null). */
VAL_EXPORT const ValString *ValStringCreateWithUTF8(const char *bytes, size_t length) VAL_NOEXCEPT;

/* The same from a zero-terminated string. */
VAL_EXPORT const ValString *ValStringCreateWithCString(const char *text) VAL_NOEXCEPT;

/* From `count` UTF-16 units in host order. A lone surrogate is kept; see ValStringGetUTF8. */
VAL_EXPORT const ValString *ValStringCreateWithUTF16(const uint16_t *units, size_t count) VAL_NOEXCEPT;

/*
 * From bytes in an encoding. Null when the encoding is unknown or the bytes do not fit it; UTF-16
 * keeps lone surrogates. No byte-order mark is looked for or removed.
 */
VAL_EXPORT const ValString *ValStringCreateWithBytes(const void *bytes, size_t length,
                                                     ValStringEncoding encoding) VAL_NOEXCEPT;

/* From a file name or path as the file system gives it: any bytes but zero are kept as they are. */
VAL_EXPORT const ValString *ValStringCreateWithFileSystemRepresentation(const char *bytes,
                                                                        size_t length) VAL_NOEXCEPT;

/*
 * The text as zero-terminated UTF-8 (borrowed), its length in bytes in *length unless that is null.
 * Null when the string cannot be written as UTF-8 without loss: it holds a lone surrogate or bytes
 * of a file name that are no text.
 */
VAL_EXPORT const char *ValStringGetUTF8(const ValString *string, size_t *length) VAL_NOEXCEPT;

/*
 * The bytes as they are stored (borrowed, zero-terminated), whatever they are: UTF-8, in which a
 * lone surrogate takes three bytes, or the bytes of a file name.
 */
VAL_EXPORT const char *ValStringGetBytes(const ValString *string, size_t *length) VAL_NOEXCEPT;

/* The length in UTF-16 units; a byte that is no text counts as one. */
VAL_EXPORT size_t ValStringGetUTF16Length(const ValString *string) VAL_NOEXCEPT;

/*
 * -1, 0 or 1 as `a` sorts before, with or after `b`. Null sorts before everything. Without options
 * the order is that of code points. With options, strings that are no valid Unicode sort behind all
 * others, by their bytes. Every combination of options gives an order that can be sorted by.
 */
VAL_EXPORT int ValStringCompare(const ValString *a, const ValString *b,
                                ValCompareOptions options) VAL_NOEXCEPT;

/*
 * Finds `sought` in `string` (options: CaseInsensitive, Backwards). True when it occurs, and its
 * place in *found unless that is null. The empty string occurs nowhere.
 */
VAL_EXPORT bool ValStringFind(const ValString *string, const ValString *sought, ValCompareOptions options,
                              ValRange *found) VAL_NOEXCEPT;

/* Whether a string begins or ends with another, code point by code point. */
VAL_EXPORT bool ValStringHasPrefix(const ValString *string, const ValString *prefix) VAL_NOEXCEPT;
VAL_EXPORT bool ValStringHasSuffix(const ValString *string, const ValString *suffix) VAL_NOEXCEPT;

/* A stretch of a string. Null when the range leaves the string or cuts a character in two. */
VAL_EXPORT const ValString *ValStringCopySubstring(const ValString *string, ValRange range) VAL_NOEXCEPT;

/* Without `trim` (null: nothing) at both of its ends, as often as it stands there; compared exactly. */
VAL_EXPORT const ValString *ValStringCopyTrimming(const ValString *string,
                                                  const ValString *trim) VAL_NOEXCEPT;

/* Without white space (Unicode's White_Space) at both of its ends. */
VAL_EXPORT const ValString *ValStringCopyTrimmingWhitespace(const ValString *string) VAL_NOEXCEPT;

/*
 * Lower-cased character by character, the same in every locale: the key form of names. U+0130 becomes
 * two characters, i and U+0307.
 */
VAL_EXPORT const ValString *ValStringCopyLowercase(const ValString *string) VAL_NOEXCEPT;

/*
 * The pieces between occurrences of `separator`, an array of strings; one piece if none occurs, or
 * the separator is empty or null.
 */
VAL_EXPORT const ValArray *ValStringCopyComponents(const ValString *string,
                                                   const ValString *separator) VAL_NOEXCEPT;

/*
 * With every byte percent-escaped that may not stand in a URL's path or fragment, and every
 * character of `also` (ASCII; may be null). An escape that stands in the text is escaped again.
 */
VAL_EXPORT const ValString *ValStringCopyAddingPercentEscapes(const ValString *string,
                                                              const ValString *also) VAL_NOEXCEPT;

/* With every percent escape decoded. A "%" that begins no escape stays; %00 gives null. */
VAL_EXPORT const ValString *ValStringCopyRemovingPercentEscapes(const ValString *string) VAL_NOEXCEPT;

/* ---- numbers and booleans -------------------------------------------------------------------- */

/* The type that a number keeps. The numbers are part of Vellum's flattened form. */
typedef uint32_t ValNumberType;
enum {
    kValNumberTypeNone = 0, /* null */
    kValNumberTypeSInt8 = 1,
    kValNumberTypeSInt16 = 2,
    kValNumberTypeSInt32 = 3,
    kValNumberTypeSInt64 = 4,
    kValNumberTypeFloat32 = 5,
    kValNumberTypeFloat64 = 6
};

/* A number of the type that the name says. */
VAL_EXPORT const ValNumber *ValNumberCreateSInt8(int8_t value) VAL_NOEXCEPT;
VAL_EXPORT const ValNumber *ValNumberCreateSInt16(int16_t value) VAL_NOEXCEPT;
VAL_EXPORT const ValNumber *ValNumberCreateSInt32(int32_t value) VAL_NOEXCEPT;
VAL_EXPORT const ValNumber *ValNumberCreateSInt64(int64_t value) VAL_NOEXCEPT;
VAL_EXPORT const ValNumber *ValNumberCreateFloat32(float value) VAL_NOEXCEPT;
VAL_EXPORT const ValNumber *ValNumberCreateFloat64(double value) VAL_NOEXCEPT;

/* The type that the number was made with; None for null. */
VAL_EXPORT ValNumberType ValNumberGetNumberType(const ValNumber *number) VAL_NOEXCEPT;

/*
 * Reading converts as needed: a 64-bit integer is cut to its low 32 bits; a floating-point value
 * loses its fraction, is clamped to the type's range, and not-a-number reads as 0. Null reads as 0.
 */
VAL_EXPORT int32_t ValNumberGetSInt32(const ValNumber *number) VAL_NOEXCEPT;
VAL_EXPORT int64_t ValNumberGetSInt64(const ValNumber *number) VAL_NOEXCEPT;
VAL_EXPORT double ValNumberGetFloat64(const ValNumber *number) VAL_NOEXCEPT;

/* The two booleans; they are never freed, and there are no others. */
VAL_EXPORT extern const ValBoolean *const kValBooleanTrue;
VAL_EXPORT extern const ValBoolean *const kValBooleanFalse;

/* False for null. */
VAL_EXPORT bool ValBooleanGetValue(const ValBoolean *boolean) VAL_NOEXCEPT;

/* ---- data and UUIDs -------------------------------------------------------------------------- */

/* Copies `length` bytes; `bytes` may be null when there are none. */
VAL_EXPORT const ValData *ValDataCreate(const void *bytes, size_t length) VAL_NOEXCEPT;

/*
 * Takes bytes where they lie. They must stay as they are until `release(context)` is called, once,
 * from whatever thread gives the last reference back; `release` may be null. Null (and no call of
 * `release`) when memory is exhausted.
 */
VAL_EXPORT const ValData *ValDataCreateWithBytesNoCopy(const void *bytes, size_t length,
                                                       void (*release)(void *context),
                                                       void *context) VAL_NOEXCEPT;

/* Empty, with room for `capacity` bytes. */
VAL_EXPORT ValData *ValDataCreateMutable(size_t capacity) VAL_NOEXCEPT;

/* The length in bytes, and the bytes (borrowed). */
VAL_EXPORT size_t ValDataGetLength(const ValData *data) VAL_NOEXCEPT;
VAL_EXPORT const uint8_t *ValDataGetBytes(const ValData *data) VAL_NOEXCEPT;

/* The bytes for writing; the pointer dies at the next append or change of length. */
VAL_EXPORT uint8_t *ValDataGetMutableBytes(ValData *data) VAL_NOEXCEPT;
VAL_EXPORT bool ValDataAppend(ValData *data, const void *bytes, size_t length) VAL_NOEXCEPT;

/* Cuts, or grows with zeros. */
VAL_EXPORT bool ValDataSetLength(ValData *data, size_t length) VAL_NOEXCEPT;

/* A random (version 4) UUID. */
VAL_EXPORT const ValUUID *ValUUIDCreate(void) VAL_NOEXCEPT;

/* From its 16 bytes in canonical order. */
VAL_EXPORT const ValUUID *ValUUIDCreateWithBytes(const uint8_t bytes[16]) VAL_NOEXCEPT;

/* From the 36-character form, in either case; null for any other text. */
VAL_EXPORT const ValUUID *ValUUIDCreateWithString(const ValString *text) VAL_NOEXCEPT;

/* The 16 bytes (borrowed). */
VAL_EXPORT const uint8_t *ValUUIDGetBytes(const ValUUID *uuid) VAL_NOEXCEPT;

/* The 36-character form, in upper case. */
VAL_EXPORT const ValString *ValUUIDCopyString(const ValUUID *uuid) VAL_NOEXCEPT;

/* ---- URLs ------------------------------------------------------------------------------------ */

/*
 * A URL keeps the text that it was made from and, when that text is relative, its base. Parts are
 * read from the absolute form. "Escaped" parts are as they stand in the text.
 */

/*
 * Null when the text is no URL, or is relative and has no base. Characters that should stand escaped
 * are let pass, but control characters are not, nor is what is no valid Unicode.
 */
VAL_EXPORT const ValURL *ValURLCreateWithString(const ValString *text, const ValURL *base) VAL_NOEXCEPT;
VAL_EXPORT const ValURL *ValURLCreateWithBytes(const void *bytes, size_t length,
                                               const ValURL *base) VAL_NOEXCEPT;

/*
 * A file URL from a POSIX path of any bytes but zero. A relative path is taken from `base`, or from
 * the current directory when that is null. `isDirectory` ends the URL's path with a slash. Doubled
 * slashes stay. Null for an empty path.
 */
VAL_EXPORT const ValURL *ValURLCreateWithFileSystemPath(const ValString *path, bool isDirectory,
                                                        const ValURL *base) VAL_NOEXCEPT;

/* The text that the URL was made from (borrowed). */
VAL_EXPORT const ValString *ValURLGetString(const ValURL *url) VAL_NOEXCEPT;

/* The base (borrowed), or null. */
VAL_EXPORT const ValURL *ValURLGetBase(const ValURL *url) VAL_NOEXCEPT;

/* The URL without a base: itself when it has none. */
VAL_EXPORT const ValURL *ValURLCopyAbsolute(const ValURL *url) VAL_NOEXCEPT;

/* The scheme in lower case; the host (its letter case kept), null when there is none or an empty one. */
VAL_EXPORT const ValString *ValURLCopyScheme(const ValURL *url) VAL_NOEXCEPT;
VAL_EXPORT const ValString *ValURLCopyHost(const ValURL *url) VAL_NOEXCEPT;

/* The escaped path; it may be empty. */
VAL_EXPORT const ValString *ValURLCopyPath(const ValURL *url) VAL_NOEXCEPT;

/*
 * What follows "#", without it: escaped, or with every escape decoded; one that holds an escaped zero stays
 * as it is. Null when there is no "#".
 */
VAL_EXPORT const ValString *ValURLCopyFragment(const ValURL *url) VAL_NOEXCEPT;
VAL_EXPORT const ValString *ValURLCopyDecodedFragment(const ValURL *url) VAL_NOEXCEPT;

/* The URL with another escaped fragment; null takes the fragment and its "#" away. */
VAL_EXPORT const ValURL *ValURLCopyWithFragment(const ValURL *url, const ValString *fragment) VAL_NOEXCEPT;

/*
 * The POSIX path of a file URL, without a trailing slash (the root excepted), its escapes decoded.
 * Null when the URL is no file URL, has no path, or its path holds an escaped zero or slash.
 */
VAL_EXPORT const ValString *ValURLCopyFileSystemPath(const ValURL *url) VAL_NOEXCEPT;

/* The same, zero-terminated, into a buffer; false when there is none or it does not fit. */
VAL_EXPORT bool ValURLGetFileSystemRepresentation(const ValURL *url, char *buffer,
                                                  size_t size) VAL_NOEXCEPT;

/* True when the path ends with a slash. */
VAL_EXPORT bool ValURLHasDirectoryPath(const ValURL *url) VAL_NOEXCEPT;

/* The path's last component, decoded; "/" for the root; null when there is no path. */
VAL_EXPORT const ValString *ValURLCopyLastPathComponent(const ValURL *url) VAL_NOEXCEPT;

/* The path's extension, decoded, without its dot; null when there is none. */
VAL_EXPORT const ValString *ValURLCopyPathExtension(const ValURL *url) VAL_NOEXCEPT;

/*
 * The directory that holds it, ending with a slash; the root's is the root. No fragment, no query.
 * Null when the path has no slash.
 */
VAL_EXPORT const ValURL *ValURLCopyDeletingLastPathComponent(const ValURL *url) VAL_NOEXCEPT;

/*
 * With one more component (unescaped text) at the end of its path. No fragment, no query. Slashes
 * within it part several components; those in front of it are dropped. Null when nothing is left.
 */
VAL_EXPORT const ValURL *ValURLCopyAppendingPathComponent(const ValURL *url, const ValString *component,
                                                          bool isDirectory) VAL_NOEXCEPT;

/* ---- containers ------------------------------------------------------------------------------ */

/*
 * What a container does with what is put into it. A null function means: keep the pointer-sized
 * item as it is, without counting (retain, release), by identity (equal, hash). `describe` may be
 * null. The struct is copied. The functions must not change the container, and must outlive it.
 */
typedef struct {
    const void *(*retain)(const void *item);
    void (*release)(const void *item);
    bool (*equal)(const void *a, const void *b);
    uint64_t (*hash)(const void *item);
    const ValString *(*describe)(const void *item);
} ValCallbacks;

/* Items are values: counted, compared with ValEqual. Null callbacks mean these everywhere below. */
VAL_EXPORT extern const ValCallbacks kValValueCallbacks;

/* Items are plain integers or pointers: not counted, compared by identity. */
VAL_EXPORT extern const ValCallbacks kValRawCallbacks;

/* Like kValValueCallbacks, but strings are equal when their lower-cased forms are. */
VAL_EXPORT extern const ValCallbacks kValCaseInsensitiveStringCallbacks;

/* Arrays. Null elements are allowed. */
VAL_EXPORT const ValArray *ValArrayCreate(const void *const *items, size_t count) VAL_NOEXCEPT;
VAL_EXPORT ValArray *ValArrayCreateMutable(size_t capacity, const ValCallbacks *callbacks) VAL_NOEXCEPT;
VAL_EXPORT ValArray *ValArrayCreateMutableCopy(const ValArray *array) VAL_NOEXCEPT;
VAL_EXPORT size_t ValArrayGetCount(const ValArray *array) VAL_NOEXCEPT;

/* The element (borrowed); null past the end. */
VAL_EXPORT const void *ValArrayGetValue(const ValArray *array, size_t index) VAL_NOEXCEPT;

/* The elements (borrowed), ValArrayGetCount of them; the pointer dies at the next change. */
VAL_EXPORT const void *const *ValArrayGetValues(const ValArray *array) VAL_NOEXCEPT;

/* The first index of an equal element, or SIZE_MAX. */
VAL_EXPORT size_t ValArrayGetFirstIndexOf(const ValArray *array, const void *item) VAL_NOEXCEPT;
VAL_EXPORT bool ValArrayContains(const ValArray *array, const void *item) VAL_NOEXCEPT;
VAL_EXPORT bool ValArrayAppend(ValArray *array, const void *item) VAL_NOEXCEPT;
VAL_EXPORT bool ValArrayAppendArray(ValArray *array, const ValArray *more) VAL_NOEXCEPT;
VAL_EXPORT bool ValArrayReplace(ValArray *array, size_t index, const void *item) VAL_NOEXCEPT;
VAL_EXPORT bool ValArrayRemove(ValArray *array, size_t index) VAL_NOEXCEPT;
VAL_EXPORT void ValArrayRemoveAll(ValArray *array) VAL_NOEXCEPT;

/*
 * Dictionaries enumerate in the order in which their keys were first added. Null keys and null
 * values are refused by callbacks that retain, and are plain zeros under others. A null array of no
 * items makes an empty container.
 */
VAL_EXPORT const ValDictionary *ValDictionaryCreate(const void *const *keys, const void *const *values,
                                                    size_t count) VAL_NOEXCEPT;
VAL_EXPORT ValDictionary *ValDictionaryCreateMutable(size_t capacity, const ValCallbacks *keyCallbacks,
                                                     const ValCallbacks *valueCallbacks) VAL_NOEXCEPT;
VAL_EXPORT ValDictionary *ValDictionaryCreateMutableCopy(const ValDictionary *dictionary) VAL_NOEXCEPT;
VAL_EXPORT size_t ValDictionaryGetCount(const ValDictionary *dictionary) VAL_NOEXCEPT;

/* The value (borrowed), or null. */
VAL_EXPORT const void *ValDictionaryGetValue(const ValDictionary *dictionary, const void *key) VAL_NOEXCEPT;

/* True when the key is present, and its value (borrowed) in *value unless that is null. */
VAL_EXPORT bool ValDictionaryGetValueIfPresent(const ValDictionary *dictionary, const void *key,
                                               const void **value) VAL_NOEXCEPT;
VAL_EXPORT bool ValDictionaryContainsKey(const ValDictionary *dictionary, const void *key) VAL_NOEXCEPT;

/*
 * Walks the entries: start with *cursor 0; false at the end. Key and value are borrowed. Entries may
 * be removed, and values replaced, during a walk.
 */
VAL_EXPORT bool ValDictionaryNext(const ValDictionary *dictionary, size_t *cursor, const void **key,
                                  const void **value) VAL_NOEXCEPT;

/* Adds the pair, or gives the key that is there (which stays) another value. */
VAL_EXPORT bool ValDictionarySetValue(ValDictionary *dictionary, const void *key,
                                      const void *value) VAL_NOEXCEPT;

/* True when the key was there. */
VAL_EXPORT bool ValDictionaryRemoveValue(ValDictionary *dictionary, const void *key) VAL_NOEXCEPT;
VAL_EXPORT void ValDictionaryRemoveAll(ValDictionary *dictionary) VAL_NOEXCEPT;

/* Sets enumerate in the order in which their members were first added. */
VAL_EXPORT const ValSet *ValSetCreate(const void *const *items, size_t count) VAL_NOEXCEPT;
VAL_EXPORT ValSet *ValSetCreateMutable(size_t capacity, const ValCallbacks *callbacks) VAL_NOEXCEPT;
VAL_EXPORT ValSet *ValSetCreateMutableCopy(const ValSet *set) VAL_NOEXCEPT;
VAL_EXPORT size_t ValSetGetCount(const ValSet *set) VAL_NOEXCEPT;
VAL_EXPORT bool ValSetContains(const ValSet *set, const void *item) VAL_NOEXCEPT;

/* True when an equal member is there, and that member (borrowed) in *member unless that is null. */
VAL_EXPORT bool ValSetGetMemberIfPresent(const ValSet *set, const void *item,
                                         const void **member) VAL_NOEXCEPT;

/*
 * Walks the members: start with *cursor 0; false at the end. The member is borrowed. Members may be
 * removed during a walk.
 */
VAL_EXPORT bool ValSetNext(const ValSet *set, size_t *cursor, const void **member) VAL_NOEXCEPT;

/* Adds the item unless an equal one (which stays) is there; true either way. Null as in dictionaries. */
VAL_EXPORT bool ValSetAdd(ValSet *set, const void *item) VAL_NOEXCEPT;

/* True when an equal member was there. */
VAL_EXPORT bool ValSetRemove(ValSet *set, const void *item) VAL_NOEXCEPT;
VAL_EXPORT void ValSetRemoveAll(ValSet *set) VAL_NOEXCEPT;

/* ---- character sets -------------------------------------------------------------------------- */

/* Sets of Unicode code points, 0 to 0x10FFFF. Null when `first` is greater than `last`. */
VAL_EXPORT const ValCharacterSet *ValCharacterSetCreateWithRange(uint32_t first,
                                                                 uint32_t last) VAL_NOEXCEPT;
VAL_EXPORT ValCharacterSet *ValCharacterSetCreateMutable(void) VAL_NOEXCEPT;
VAL_EXPORT ValCharacterSet *ValCharacterSetCreateMutableCopy(const ValCharacterSet *set) VAL_NOEXCEPT;

/*
 * From the bitmap form: 8,192 bytes for U+0000 to U+FFFF, then, for each further plane, one byte
 * with its number (1 to 16) and 8,192 bytes. Bit n stands in byte n / 8, counted from the least
 * significant. A first part that is shorter is filled up with zeros. Null for any other shape, such
 * as a plane that comes twice.
 */
VAL_EXPORT const ValCharacterSet *ValCharacterSetCreateWithBitmap(const void *bytes,
                                                                  size_t length) VAL_NOEXCEPT;

/* The bitmap form; planes without members are left out, but for the first. */
VAL_EXPORT const ValData *ValCharacterSetCopyBitmap(const ValCharacterSet *set) VAL_NOEXCEPT;
VAL_EXPORT size_t ValCharacterSetGetCount(const ValCharacterSet *set) VAL_NOEXCEPT;
VAL_EXPORT bool ValCharacterSetContains(const ValCharacterSet *set, uint32_t codePoint) VAL_NOEXCEPT;
VAL_EXPORT bool ValCharacterSetHasMemberInPlane(const ValCharacterSet *set, uint32_t plane) VAL_NOEXCEPT;

/* True when every member of `other` is one of `set`. */
VAL_EXPORT bool ValCharacterSetIsSuperset(const ValCharacterSet *set,
                                          const ValCharacterSet *other) VAL_NOEXCEPT;

/*
 * Walks the members as runs of consecutive code points: *last is where the walk stands; start with
 * UINT32_MAX. False at the end.
 */
VAL_EXPORT bool ValCharacterSetNextRange(const ValCharacterSet *set, uint32_t *first,
                                         uint32_t *last) VAL_NOEXCEPT;

/* Both ends are included; code points above 0x10FFFF are left out. False when first > last. */
VAL_EXPORT bool ValCharacterSetAddRange(ValCharacterSet *set, uint32_t first, uint32_t last) VAL_NOEXCEPT;
VAL_EXPORT bool ValCharacterSetRemoveRange(ValCharacterSet *set, uint32_t first,
                                           uint32_t last) VAL_NOEXCEPT;
VAL_EXPORT bool ValCharacterSetUnion(ValCharacterSet *set, const ValCharacterSet *other) VAL_NOEXCEPT;

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* VELLUM_VALUES_H */

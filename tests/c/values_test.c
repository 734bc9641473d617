/* SPDX-License-Identifier: MIT */
/* The values from C, with nothing but the library: every function of values.h, what it gives and what
   null makes of it. */
#include "check.h"

#include <vellum/values.h>

#include <string.h>

static const ValString *Text(const char *text) {
    return ValStringCreateWithCString(text);
}

/* Compares an owned string with a text and gives it back. */
static bool Is(const ValString *string, const char *text) {
    const char *bytes = ValStringGetUTF8(string, NULL);
    const bool equal = bytes && strcmp(bytes, text) == 0;
    ValRelease(string);
    return equal;
}

static const ValURL *URL(const char *text) {
    const ValString *string = Text(text);
    const ValURL *url = ValURLCreateWithString(string, NULL);
    ValRelease(string);
    return url;
}

/* The same for an owned URL and its absolute text. */
static bool URLIs(const ValURL *url, const char *text) {
    const ValURL *absolute = ValURLCopyAbsolute(url);
    const bool equal = Is(ValRetain(ValURLGetString(absolute)), text);
    ValRelease(absolute);
    ValRelease(url);
    return equal;
}

static void ValuesAreCountedAndCompared(void) {
    const ValString *a = Text("a");
    const ValString *b = Text("a");
    CHECK(ValRetain(a) == a);
    ValRelease(a);
    CHECK(ValEqual(a, b) && ValHash(a) == ValHash(b));
    CHECK(ValGetType(a) == kValTypeString && ValGetType(NULL) == kValTypeNone);
    CHECK(Is(ValCopyDescription(a), "\"a\"") && Is(ValCopyDescription(NULL), "null"));
    ValRelease(a);
    ValRelease(b);
    ValRelease(NULL);
}

static void StringsAreMade(void) {
    const uint16_t units[] = {'h', 0xE9, 0xD834, 0xDD1E};
    const ValString *string = ValStringCreateWithUTF16(units, 4);
    size_t length = 0;
    CHECK(strcmp(ValStringGetUTF8(string, &length), "h\xC3\xA9\xF0\x9D\x84\x9E") == 0 && length == 7);
    CHECK(ValStringGetUTF16Length(string) == 4);
    ValRelease(string);

    CHECK(ValStringCreateWithUTF8("\xFF", 1) == NULL);
    CHECK(Is(ValStringCreateWithUTF8("abc", 2), "ab"));
    CHECK(Is(ValStringCreateWithBytes("\x8A", 1, kValStringEncodingRoman), "\xC3\xA4"));
    string = ValStringCreateWithFileSystemRepresentation("\xFF", 1);
    CHECK(ValStringGetUTF8(string, NULL) == NULL);
    CHECK(strcmp(ValStringGetBytes(string, &length), "\xFF") == 0 && length == 1);
    ValRelease(string);
}

static void StringsAreComparedAndSearched(void) {
    const ValString *text = Text("Font10 FONT2");
    const ValString *font = Text("font");
    ValRange found = {0, 0};
    CHECK(ValStringCompare(text, font, kValCompareExact) == -1);
    CHECK(ValStringCompare(text, font, kValCompareCaseInsensitive | kValCompareNumeric) == 1);
    CHECK(!ValStringFind(text, font, 0, &found));
    CHECK(ValStringFind(text, font, kValCompareCaseInsensitive | kValCompareBackwards, &found));
    CHECK(found.offset == 7 && found.length == 4);
    CHECK(Is(ValStringCopySubstring(text, found), "FONT"));
    CHECK(!ValStringHasPrefix(text, font) && ValStringHasPrefix(text, text) &&
          ValStringHasSuffix(text, text));
    ValRelease(text);
    ValRelease(font);
}

static void StringsAreChanged(void) {
    const ValString *text = Text("--A b; c--");
    const ValString *dash = Text("-");
    const ValString *semicolon = Text(";");
    CHECK(Is(ValStringCopyTrimming(text, dash), "A b; c"));
    CHECK(Is(ValStringCopyLowercase(text), "--a b; c--"));
    CHECK(Is(ValStringCopyAddingPercentEscapes(text, semicolon), "--A%20b%3B%20c--"));
    const ValArray *pieces = ValStringCopyComponents(text, semicolon);
    CHECK(ValArrayGetCount(pieces) == 2);
    CHECK(Is(ValStringCopyTrimmingWhitespace(ValArrayGetValue(pieces, 1)), "c--"));
    ValRelease(pieces);
    ValRelease(text);
    text = Text("%41%zz");
    CHECK(Is(ValStringCopyRemovingPercentEscapes(text), "A%zz"));
    ValRelease(text);
    ValRelease(dash);
    ValRelease(semicolon);
}

static bool NumberIs(const ValNumber *number, ValNumberType type, int64_t value) {
    const bool is = ValNumberGetNumberType(number) == type && ValNumberGetSInt64(number) == value &&
                    ValNumberGetSInt32(number) == (int32_t)value &&
                    ValNumberGetFloat64(number) == (double)value;
    ValRelease(number);
    return is;
}

static void NumbersAndBooleansKeepWhatTheyAre(void) {
    CHECK(NumberIs(ValNumberCreateSInt8(-1), kValNumberTypeSInt8, -1));
    CHECK(NumberIs(ValNumberCreateSInt16(300), kValNumberTypeSInt16, 300));
    CHECK(NumberIs(ValNumberCreateSInt32(70000), kValNumberTypeSInt32, 70000));
    CHECK(NumberIs(ValNumberCreateSInt64(5), kValNumberTypeSInt64, 5));
    CHECK(NumberIs(ValNumberCreateFloat32(2), kValNumberTypeFloat32, 2));
    CHECK(NumberIs(ValNumberCreateFloat64(-8), kValNumberTypeFloat64, -8));
    CHECK(ValBooleanGetValue(kValBooleanTrue) && !ValBooleanGetValue(kValBooleanFalse));
}

static void CountRelease(void *context) {
    ++*(int *)context;
}

static void DataHoldsBytes(void) {
    ValData *data = ValDataCreateMutable(1);
    const ValData *copy = ValDataCreate("abx\0", 4);
    int released = 0;
    CHECK(ValDataAppend(data, "abc", 3) && ValDataSetLength(data, 4) && ValDataGetLength(data) == 4);
    ValDataGetMutableBytes(data)[2] = 'x';
    CHECK(ValEqual(data, copy) && memcmp(ValDataGetBytes(data), "abx\0", 4) == 0);
    ValRelease(copy);
    copy = ValDataCreateWithBytesNoCopy("abx\0", 4, CountRelease, &released);
    CHECK(ValEqual(data, copy));
    ValRelease(copy);
    ValRelease(data);
    CHECK(released == 1);
}

static void UUIDsAreWrittenAndRead(void) {
    const ValUUID *uuid = ValUUIDCreate();
    const ValString *text = ValUUIDCopyString(uuid);
    const ValUUID *read = ValUUIDCreateWithString(text);
    const ValUUID *copy = ValUUIDCreateWithBytes(ValUUIDGetBytes(uuid));
    CHECK(ValEqual(uuid, read) && ValEqual(uuid, copy));
    ValRelease(uuid);
    ValRelease(text);
    ValRelease(read);
    ValRelease(copy);
}

static void URLsHaveParts(void) {
    const ValURL *url = URL("FILE://Host/a/b%20c.ttf#x%3D");
    char path[32];
    CHECK(Is(ValURLCopyScheme(url), "file") && Is(ValURLCopyHost(url), "Host"));
    CHECK(Is(ValURLCopyPath(url), "/a/b%20c.ttf") && Is(ValURLCopyFileSystemPath(url), "/a/b c.ttf"));
    CHECK(Is(ValURLCopyFragment(url), "x%3D") && Is(ValURLCopyDecodedFragment(url), "x="));
    CHECK(Is(ValURLCopyLastPathComponent(url), "b c.ttf") && Is(ValURLCopyPathExtension(url), "ttf"));
    CHECK(ValURLGetFileSystemRepresentation(url, path, sizeof path) && strcmp(path, "/a/b c.ttf") == 0);
    CHECK(!ValURLHasDirectoryPath(url));
    ValRelease(url);
    CHECK(URL("no scheme") == NULL);
}

static void URLsAreMadeFromURLs(void) {
    const ValURL *base = URL("file:///a/b#c");
    const ValString *name = Text("d e");
    const ValURL *relative = ValURLCreateWithBytes("x", 1, base);
    CHECK(ValURLGetBase(relative) == base && URLIs(relative, "file:///a/x"));
    CHECK(URLIs(ValURLCreateWithFileSystemPath(name, true, base), "file:///a/d%20e/"));
    CHECK(URLIs(ValURLCopyWithFragment(base, NULL), "file:///a/b"));
    CHECK(URLIs(ValURLCopyDeletingLastPathComponent(base), "file:///a/"));
    CHECK(URLIs(ValURLCopyAppendingPathComponent(base, name, false), "file:///a/b/d%20e"));
    ValRelease(base);
    ValRelease(name);
}

static void ArraysHoldItems(void) {
    const void *items[] = {kValBooleanTrue, NULL};
    const ValArray *fixed = ValArrayCreate(items, 2);
    ValArray *array = ValArrayCreateMutableCopy(fixed);
    CHECK(ValArrayAppend(array, kValBooleanFalse) && ValArrayAppendArray(array, fixed));
    CHECK(ValArrayGetCount(array) == 5 && ValArrayGetValues(array)[2] == kValBooleanFalse);
    CHECK(ValArrayGetFirstIndexOf(array, NULL) == 1 && ValArrayContains(array, kValBooleanFalse));
    CHECK(ValArrayReplace(array, 0, NULL) && ValArrayRemove(array, 4) &&
          ValArrayGetValue(array, 0) == NULL);
    ValArrayRemoveAll(array);
    CHECK(ValArrayGetCount(array) == 0);
    ValRelease(array);
    ValRelease(fixed);

    array = ValArrayCreateMutable(0, &kValRawCallbacks);
    CHECK(ValArrayAppend(array, (const void *)7) && ValArrayGetValue(array, 0) == (const void *)7);
    ValRelease(array);
}

static void DictionariesMapKeysToValues(void) {
    const ValString *key = Text("Key");
    const ValString *other = Text("KEY");
    const void *keys[] = {key};
    const void *values[] = {kValBooleanTrue};
    const ValDictionary *fixed = ValDictionaryCreate(keys, values, 1);
    ValDictionary *folding = ValDictionaryCreateMutable(0, &kValCaseInsensitiveStringCallbacks, NULL);
    ValDictionary *copy = ValDictionaryCreateMutableCopy(fixed);
    const void *found = NULL;
    size_t cursor = 0;
    CHECK(ValDictionaryGetCount(fixed) == 1 && ValDictionaryGetValue(fixed, key) == kValBooleanTrue);
    CHECK(!ValDictionaryContainsKey(fixed, other) && ValEqual(fixed, copy));
    CHECK(ValDictionarySetValue(folding, key, kValBooleanFalse));
    CHECK(ValDictionaryGetValueIfPresent(folding, other, &found) && found == kValBooleanFalse);
    CHECK(ValDictionaryNext(fixed, &cursor, &found, NULL) && found == key);
    CHECK(!ValDictionaryNext(fixed, &cursor, &found, NULL));
    CHECK(ValDictionaryRemoveValue(copy, key) && !ValDictionaryRemoveValue(copy, key));
    ValDictionaryRemoveAll(folding);
    CHECK(ValDictionaryGetCount(folding) == 0);
    ValRelease(copy);
    ValRelease(folding);
    ValRelease(fixed);
    ValRelease(key);
    ValRelease(other);
}

static void SetsHoldItemsOnce(void) {
    const void *items[] = {kValBooleanTrue, kValBooleanTrue};
    const ValSet *fixed = ValSetCreate(items, 2);
    ValSet *set = ValSetCreateMutableCopy(fixed);
    const void *member = NULL;
    size_t cursor = 0;
    CHECK(ValSetGetCount(fixed) == 1 && ValSetContains(fixed, kValBooleanTrue));
    CHECK(ValSetAdd(set, kValBooleanFalse) && ValSetGetMemberIfPresent(set, kValBooleanFalse, &member));
    CHECK(ValSetNext(set, &cursor, &member) && member == kValBooleanTrue);
    CHECK(ValSetRemove(set, kValBooleanTrue) && !ValSetRemove(set, kValBooleanTrue));
    ValSetRemoveAll(set);
    CHECK(ValSetGetCount(set) == 0);
    ValRelease(set);
    ValRelease(fixed);
    set = ValSetCreateMutable(4, &kValRawCallbacks);
    CHECK(ValSetAdd(set, NULL) && ValSetContains(set, NULL));
    ValRelease(set);
}

static void CharacterSetsHoldCodePoints(void) {
    const ValCharacterSet *letters = ValCharacterSetCreateWithRange('a', 'z');
    ValCharacterSet *set = ValCharacterSetCreateMutable();
    uint32_t first = 0;
    uint32_t last = UINT32_MAX;
    CHECK(ValCharacterSetAddRange(set, 0x1F600, 0x1F64F) && ValCharacterSetUnion(set, letters));
    CHECK(ValCharacterSetRemoveRange(set, 'b', 'y') && ValCharacterSetGetCount(set) == 82);
    CHECK(ValCharacterSetContains(set, 'a') && !ValCharacterSetContains(set, 'b'));
    CHECK(ValCharacterSetHasMemberInPlane(set, 1) && !ValCharacterSetHasMemberInPlane(set, 2));
    CHECK(!ValCharacterSetIsSuperset(set, letters) && ValCharacterSetIsSuperset(letters, letters));
    CHECK(ValCharacterSetNextRange(set, &first, &last) && first == 'a' && last == 'a');

    const ValData *bitmap = ValCharacterSetCopyBitmap(set);
    CHECK(ValDataGetLength(bitmap) == 2 * 8192 + 1);
    const ValCharacterSet *read =
        ValCharacterSetCreateWithBitmap(ValDataGetBytes(bitmap), ValDataGetLength(bitmap));
    ValCharacterSet *copy = ValCharacterSetCreateMutableCopy(read);
    CHECK(ValEqual(set, read) && ValEqual(copy, read));
    ValRelease(copy);
    ValRelease(read);
    ValRelease(bitmap);
    ValRelease(set);
    ValRelease(letters);
}

static const void *RetainCounter(const void *item) {
    ++*(int *)(uintptr_t)item;
    return item;
}
static void ReleaseCounter(const void *item) {
    --*(int *)(uintptr_t)item;
}

static void OwnCallbacksAreCalled(void) {
    const ValCallbacks callbacks = {RetainCounter, ReleaseCounter, NULL, NULL, NULL};
    int held = 0;
    ValSet *set = ValSetCreateMutable(0, &callbacks);
    CHECK(ValSetAdd(set, &held) && ValSetAdd(set, &held) && held == 1);
    ValRelease(set);
    CHECK(held == 0);
    CHECK(kValValueCallbacks.equal(kValBooleanTrue, kValBooleanTrue) && !kValRawCallbacks.retain);
}

int main(void) {
    ValuesAreCountedAndCompared();
    StringsAreMade();
    StringsAreComparedAndSearched();
    StringsAreChanged();
    NumbersAndBooleansKeepWhatTheyAre();
    DataHoldsBytes();
    UUIDsAreWrittenAndRead();
    URLsHaveParts();
    URLsAreMadeFromURLs();
    ArraysHoldItems();
    DictionariesMapKeysToValues();
    SetsHoldItemsOnce();
    CharacterSetsHoldCodePoints();
    OwnCallbacksAreCalled();
    return EXIT_SUCCESS;
}

// Node on Linux, with the package koffi, since Node itself can't call a library: node host.js BUNDLE
const koffi = require('koffi');
const orva = koffi.load('libOrvaLanguage.so.1');
const open = orva.func('void* ZuOpenBundle(const char* path)');
const load = orva.func('int ZuLoadStrings(const char* language, const char* file, void* bundle)');
const lookUp = orva.func('const char* ZuGetLocalizedString(const char* key)');  // koffi copies

function text(key, fallback) {
    if (typeof key !== 'string') throw new TypeError('a key is a string');
    return lookUp(key) ?? fallback;
}

const bundle = open(process.argv[2]);  // a null bundle would be Node's own
if (!bundle || load('Deutsch', 'Sample.strings', bundle) < 1) throw new Error('no texts');
console.log(text('MENU_OPEN', 'Open'));
console.log(text('MENU_NEW', 'New'));

// Rust: rustc --edition 2021 -L LIBRARY_FOLDER host.rs -o Host
use std::ffi::{c_void, CStr, CString};
use std::os::raw::{c_char, c_int};

#[link(name = "OrvaLanguage")]
extern "C" {
    fn ZuLoadStrings(language: *const c_char, file: *const c_char, bundle: *mut c_void) -> c_int;
    fn ZuGetLocalizedString(key: *const c_char) -> *const c_char;
}

fn text(key: &str, fallback: &str) -> String {
    let key = CString::new(key).expect("a key has no NUL");
    let found = unsafe { ZuGetLocalizedString(key.as_ptr()) };
    if found.is_null() {
        return fallback.into();
    }
    let found = unsafe { CStr::from_ptr(found) };
    found.to_string_lossy().into_owned() // a copy
}

fn main() {
    let (language, file) = (b"Deutsch\0".as_ptr(), b"Sample.strings\0".as_ptr());
    if unsafe { ZuLoadStrings(language.cast(), file.cast(), std::ptr::null_mut()) } < 1 {
        eprintln!("Host: no texts");
        std::process::exit(1);
    }
    println!("{}", text("MENU_OPEN", "Open"));
    println!("{}", text("MENU_NEW", "New"));
}

import QtQuick

// Return does what the screen is for, wherever the focus stands, but for a button with the focus
// ring; not behind a sheet, and not again while the key is held.
Shortcut {
    sequences: ["Return", "Enter"]
    autoRepeat: false
}

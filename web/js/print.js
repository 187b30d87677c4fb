// The page for paper opens the browser's print dialogue when its button is pressed.
"use strict";

document.addEventListener("DOMContentLoaded", () => {
    const button = document.getElementById("printButton");
    if (!button) return;
    button.hidden = false;
    button.addEventListener("click", () => window.print());
});

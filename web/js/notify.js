// Shows that a report is being made, with a button that stops the wait for it.
"use strict";

document.addEventListener("DOMContentLoaded", () => {
    const form = document.getElementById("searchForm");
    const progress = document.getElementById("notify");
    const cancel = document.getElementById("cancel_button");
    if (!form || !progress || !cancel) return;

    form.addEventListener("submit", (event) => {
        // What was stopped, or only deletes, makes no report.
        if (event.defaultPrevented || event.submitter?.formNoValidate) return;
        progress.hidden = false;
    });
    cancel.addEventListener("click", () => {
        window.stop();
        progress.hidden = true;
    });
    // The page may come back from the browser's memory as it was left.
    window.addEventListener("pageshow", () => {
        progress.hidden = true;
    });
});

// Forms that change something: a second click while the first is under way sends nothing.
'use strict';

document.addEventListener('DOMContentLoaded', () => {
    const form = document.getElementById('detailForm');
    if (!form) return;
    let sent = false;

    form.addEventListener('submit', (event) => {
        if (sent) event.preventDefault();
        sent = true;
    });
    // The page may come back from the browser's memory as it was left.
    window.addEventListener('pageshow', () => {
        sent = false;
    });
});

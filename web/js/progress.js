// Keeps the page of a running report up to date, and shows the result once it is there. Each
// question is answered after about a second, so no timer is needed: browsers slow those of hidden
// pages down so far that the portal would give the report up.
"use strict";

document.addEventListener("DOMContentLoaded", async () => {
    const mostFailures = 5;
    const form = document.getElementById("progressForm");
    const text = document.getElementById("progressText");
    if (!form || !text) return;
    let left = false;
    form.addEventListener("submit", () => {
        left = true;
    });

    const ask = async () => {
        // An address with a password in it, such as the page's own may be, cannot be fetched.
        const page = location.origin + location.pathname;
        const answer = await fetch(new URL(`${form.dataset.url}&progress=1`, page));
        if (!answer.ok) throw new Error(answer.statusText);
        return answer.json();
    };
    for (let failures = 0; failures < mostFailures && !left; ) {
        try {
            const progress = await ask();
            failures = 0;
            if (left) return;
            if (progress.state !== "running") {
                // A file to save leaves this page where it is.
                if (progress.state === "ready") text.textContent = "The report is ready.";
                location.replace(form.dataset.url);
                return;
            }
            text.textContent = progress.text;
        } catch {
            failures++;
            await new Promise((resolve) => setTimeout(resolve, 1000));
        }
    }
    if (!left) text.textContent = "The portal does not answer. Please run the report again.";
});

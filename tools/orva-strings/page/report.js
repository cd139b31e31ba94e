// The filter of the findings. Everything else on the page works without a script.
"use strict";

for (const filter of document.querySelectorAll(".filter")) {
    const rules = [...filter.parentElement.querySelectorAll("details[data-rule]")];
    const select = filter.querySelector("select");
    const shown = filter.querySelector("output");
    const count = (details) => details.querySelectorAll("li").length;
    const apply = () => {
        let visible = 0;
        let all = 0;
        for (const details of rules) {
            details.hidden = select.value !== "" && details.dataset.rule !== select.value;
            all += count(details);
            visible += details.hidden ? 0 : count(details);
        }
        shown.textContent = `${visible} of ${all} shown`;
    };
    filter.hidden = false;
    select.addEventListener("change", apply);
    apply();
}

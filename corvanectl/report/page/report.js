// The page is whole without this; it adds the filter and the keys.
'use strict';
(() => {
  const form = document.querySelector('.filter');
  const query = form.querySelector('input[type=search]');
  const found = form.querySelector('output');
  const expand = form.querySelector('button');
  const none = document.querySelector('.none');

  const lower = (element) => element.textContent.toLowerCase();
  const stepOf = (element) => ({ element, outcome: element.dataset.outcome, text: lower(element) });
  const tests = [...document.querySelectorAll('.test')].map((element) => ({
    element,
    outcome: element.dataset.outcome,
    details: element.querySelector('details'),
    name: lower(element.querySelector('h2')),
    steps: [...element.querySelectorAll('.step')].map(stepOf),
  }));
  const stepCount = tests.reduce((count, test) => count + test.steps.length, 0);
  // Which tests were open before the filter opened those in which it found something.
  let opened = null;

  const chosen = () => form.querySelector('input[type=radio]:checked').value;
  const isFailure = (outcome) => outcome === 'failed' || outcome === 'other';
  const fits = (outcome, wanted) =>
    wanted === 'all' || (wanted === 'failed' ? isFailure(outcome) : outcome === wanted);

  // Steps that fit are shown. A test that fits itself, and has no step that does, shows all of them.
  function filter() {
    const text = query.value.trim().toLowerCase();
    const wanted = chosen();
    const filters = text !== '' || wanted !== 'all';
    opened ??= filters ? tests.map((test) => test.details.open) : null;
    let shown = 0;
    tests.forEach((test, index) => {
      const named = test.name.includes(text);
      const fitting = test.steps.filter(
        (step) => fits(step.outcome, wanted) && (named || step.text.includes(text)),
      );
      const visible = fitting.length > 0 || (named && fits(test.outcome, wanted));
      const steps = new Set(fitting.length > 0 ? fitting : test.steps);
      for (const step of test.steps) step.element.hidden = !steps.has(step);
      test.element.hidden = !visible;
      if (visible) shown += steps.size;
      if (filters) test.details.open = visible;
      else if (opened) test.details.open = opened[index];
    });
    if (!filters) opened = null;
    found.textContent = filters ? `${shown} of ${stepCount} steps` : '';
    none.hidden = tests.length === 0 || tests.some((test) => !test.element.hidden);
  }

  const isVisible = (element) => element.checkVisibility();

  function focusRow(row) {
    for (let outer = row.closest('details'); outer; outer = outer.parentElement.closest('details')) {
      if (outer.firstElementChild !== row) outer.open = true;
    }
    row.focus();
    row.scrollIntoView({ block: 'nearest' });
  }

  // From where the focus is to the next row, or the one before; round the end for `around`.
  function move(rows, direction, around) {
    const here = document.activeElement;
    const ordered = direction > 0 ? rows : [...rows].reverse();
    const beyond = direction > 0 ? Node.DOCUMENT_POSITION_FOLLOWING : Node.DOCUMENT_POSITION_PRECEDING;
    const next = ordered.find((row) => row !== here && here.compareDocumentPosition(row) & beyond);
    const target = next ?? (around ? ordered[0] : undefined);
    if (target) focusRow(target);
  }

  const noted = () =>
    [...document.querySelectorAll('.step:is(.failed, .other, .healed):not([hidden]) summary')].filter(
      (row) => !row.closest('.test').hidden,
    );
  const rows = () => [...document.querySelectorAll('main summary')].filter(isVisible);

  const keys = {
    '/': () => query.focus(),
    n: () => move(noted(), 1, true),
    p: () => move(noted(), -1, true),
    ArrowDown: () => move(rows(), 1, false),
    ArrowUp: () => move(rows(), -1, false),
  };

  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const typing = event.target === query;
    if (typing && event.key === 'Escape') {
      query.value = '';
      query.blur();
      filter();
      return;
    }
    const arrow = event.key.startsWith('Arrow');
    if (typing || (arrow && !event.target.matches('main summary'))) return;
    const action = Object.hasOwn(keys, event.key) ? keys[event.key] : undefined;
    if (!action) return;
    event.preventDefault();
    action();
  });

  expand.addEventListener('click', () => {
    const all = [...document.querySelectorAll('main details')];
    const open = all.some((details) => !details.open);
    for (const details of all) details.open = open;
    expand.textContent = open ? 'Collapse all' : 'Expand all';
  });
  form.addEventListener('submit', (event) => event.preventDefault());
  form.addEventListener('input', filter);
  form.hidden = tests.length === 0;
  // A browser that comes back to the page may have kept what was typed.
  filter();
})();

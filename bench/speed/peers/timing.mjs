// Does a job first so many times uncounted, then so many counted, and prints the milliseconds that
// each counted time took.
export function time(job, [uncounted, counted]) {
  const milliseconds = [];
  for (let i = -Number(uncounted); i < Number(counted); ++i) {
    const start = process.hrtime.bigint();
    job();
    if (i >= 0) milliseconds.push(Number(process.hrtime.bigint() - start) / 1e6);
  }
  console.log(JSON.stringify(milliseconds));
}

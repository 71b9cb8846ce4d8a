// Light or dark around the picture: as the desktop is set, or as chosen.
export type Surroundings = 'auto' | 'light' | 'dark';

const remembered = 'perch surroundings';
const desktop = matchMedia('(prefers-color-scheme: light)');

export function surroundings(): Surroundings {
  const chosen = localStorage.getItem(remembered);
  return chosen === 'light' || chosen === 'dark' ? chosen : 'auto';
}

export function setSurroundings(choice: Surroundings): void {
  localStorage.setItem(remembered, choice);
  apply();
}

export function followDesktop(): void {
  desktop.addEventListener('change', apply);
  apply();
}

function apply(): void {
  const choice = surroundings();
  const isLight = choice === 'auto' ? desktop.matches : choice === 'light';
  document.documentElement.dataset.surroundings = isLight ? 'light' : 'dark';
}

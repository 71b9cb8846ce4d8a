// Begins: asks the server for the session and shows the page.
import './app/perch-view';
import { followDesktop } from './app/surroundings';
import { pageStyle } from './app/theme';
import { Store } from './model/store';
import { api } from './server/api';

const { styleSheet } = pageStyle;
if (styleSheet) document.adoptedStyleSheets.push(styleSheet);
followDesktop();

try {
  const session = await api.session();
  document.title = `${session.effect.name}: ${session.picture.input}`;
  const view = document.createElement('perch-view');
  view.store = new Store(session);
  document.body.append(view);
} catch (error) {
  document.body.textContent = (error as Error).message;
}

declare global {
  interface HTMLElementTagNameMap {
    'perch-view': import('./app/perch-view').PerchView;
  }
}

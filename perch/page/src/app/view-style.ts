import { css } from 'lit';

export const viewStyle = css`
  :host {
    display: grid;
    grid-template-columns: minmax(0, 1fr);
    grid-template-rows: auto minmax(0, 1fr) auto auto;
    height: 100vh;
    overflow: clip;
    font: var(--font);
  }
  main {
    display: grid;
    grid-template-columns: minmax(0, 1fr) var(--panel);
    min-height: 0;
  }
  .time {
    height: 196px;
  }
  .time.still {
    height: auto;
  }
  .picture {
    display: grid;
    grid-template-columns: minmax(0, 1fr);
    grid-template-rows: auto minmax(0, 1fr);
    min-height: 0;
  }
  .stage {
    position: relative;
    min-height: 0;
  }
  aside {
    display: flex;
    flex-direction: column;
    min-height: 0;
    border-left: 1px solid var(--line);
  }
  parameter-panel {
    flex: 1;
    min-height: 0;
    overflow-y: auto;
  }
  @media (max-width: 1200px) {
    .time {
      height: 168px;
    }
  }
`;

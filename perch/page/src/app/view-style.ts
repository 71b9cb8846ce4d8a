import { css } from 'lit';

export const viewStyle = css`
  :host {
    display: grid;
    grid-template-columns: minmax(0, 1fr);
    grid-template-rows: auto minmax(0, 1fr) 196px auto;
    height: 100vh;
    overflow: clip;
    font: var(--font);
  }
  main {
    display: grid;
    grid-template-columns: minmax(0, 1fr) 400px;
    min-height: 0;
  }
  .time {
    min-height: 0;
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
    main {
      grid-template-columns: minmax(0, 1fr) 328px;
    }
    :host {
      grid-template-rows: auto minmax(0, 1fr) 168px auto;
    }
  }
`;
